// Defines the operations of an index list that make a key or an item of a plain type.
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_IndexList_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"

// ---- Replacing ---------------------------------------------------------------------------------

void KEL_IndexList_Impl::setMadeKey(const KEL* keyValue, KEL_Impl* newValue) {
    const JPointer<KEL_Impl> made(newValue);
    setKeyValue(keyValue, made.get());
}

void KEL_IndexList_Impl::setKeyString(const KEL* keyValue, const char* text) {
    setMadeKey(keyValue, KEL_String_Impl::makeOrNull(text));
}

void KEL_IndexList_Impl::setKeyguid(const KEL* keyValue, const JHashCode& value) {
    setMadeKey(keyValue, new KEL_guid_Impl(value));
}

void KEL_IndexList_Impl::setKeyDouble(const KEL* keyValue, double value) {
    setMadeKey(keyValue, new KEL_Double_Impl(value));
}

void KEL_IndexList_Impl::setKeyInt(const KEL* keyValue, int32_t value) {
    setMadeKey(keyValue, new KEL_Int_Impl(value));
}

void KEL_IndexList_Impl::setKeyBoolean(const KEL* keyValue, bool value) {
    setMadeKey(keyValue, new KEL_Boolean_Impl(value));
}

// ---- Adding ------------------------------------------------------------------------------------

int32_t KEL_IndexList_Impl::addMadeKey(KEL_Impl* key, KEL* item) {
    const JPointer<KEL_Impl> made(key);
    return addPair(made.get(), item);
}

int32_t KEL_IndexList_Impl::addMadeItem(KEL* key, KEL_Impl* item) {
    const JPointer<KEL_Impl> made(item);
    return addPair(key, made.get());
}

int32_t KEL_IndexList_Impl::addNamed(const char* key, KEL_Impl* item) {
    const JPointer<KEL_Impl> made(item);
    return addKeyString(key, made.get());
}

int32_t KEL_IndexList_Impl::addKeyString(const char* text, KEL* item) {
    return addMadeKey(KEL_String_Impl::makeOrNull(text), item);
}

int32_t KEL_IndexList_Impl::addKeyguid(const JHashCode& value, KEL* item) {
    return addMadeKey(new KEL_guid_Impl(value), item);
}

int32_t KEL_IndexList_Impl::addKeyDouble(double value, KEL* item) {
    return addMadeKey(new KEL_Double_Impl(value), item);
}

int32_t KEL_IndexList_Impl::addKeyInt(int32_t value, KEL* item) {
    return addMadeKey(new KEL_Int_Impl(value), item);
}

int32_t KEL_IndexList_Impl::addKeyBoolean(bool value, KEL* item) {
    return addMadeKey(new KEL_Boolean_Impl(value), item);
}

int32_t KEL_IndexList_Impl::addItemString(KEL* key, const char* text) {
    return addMadeItem(key, KEL_String_Impl::makeOrNull(text));
}

int32_t KEL_IndexList_Impl::addItemguid(KEL* key, const JHashCode& value) {
    return addMadeItem(key, new KEL_guid_Impl(value));
}

int32_t KEL_IndexList_Impl::addItemDouble(KEL* key, double value) {
    return addMadeItem(key, new KEL_Double_Impl(value));
}

int32_t KEL_IndexList_Impl::addItemInt(KEL* key, int32_t value) {
    return addMadeItem(key, new KEL_Int_Impl(value));
}

int32_t KEL_IndexList_Impl::addItemBoolean(KEL* key, bool value) {
    return addMadeItem(key, new KEL_Boolean_Impl(value));
}

int32_t KEL_IndexList_Impl::addNamedString(const char* key, const char* text) {
    return addNamed(key, KEL_String_Impl::makeOrNull(text));
}

int32_t KEL_IndexList_Impl::addNamedguid(const char* key, const JHashCode& value) {
    return addNamed(key, new KEL_guid_Impl(value));
}

int32_t KEL_IndexList_Impl::addNamedDouble(const char* key, double value) {
    return addNamed(key, new KEL_Double_Impl(value));
}

int32_t KEL_IndexList_Impl::addNamedInt(const char* key, int32_t value) {
    return addNamed(key, new KEL_Int_Impl(value));
}

int32_t KEL_IndexList_Impl::addNamedBoolean(const char* key, bool value) {
    return addNamed(key, new KEL_Boolean_Impl(value));
}
