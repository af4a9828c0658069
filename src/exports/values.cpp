// The exported factories and delete functions of values, names and exceptions. A factory returns
// null when there is no memory for the value.

#include "exports/OrNull.h"
#include "meta/KEL_Manager_Impl.h"
#include "meta/MetaKel_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_MultiSelector_Impl.h"
#include "values/KEL_Selector_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <kel/KELException.h>
#include <kel/StringEnumeration.h>

using kel::orNullWithoutMemory;

namespace {

template <class T, class... Arguments> T* create(const Arguments&... arguments) {
    return orNullWithoutMemory([&] { return new T(arguments...); });
}

template <class T> void releaseOnce(T* object) {
    if (object != nullptr) {
        object->release();
    }
}

} // namespace

KEL_Boolean* KEL_CALL CreateKELBoolean(bool value) {
    return create<KEL_Boolean_Impl>(value);
}

KEL_Int* KEL_CALL CreateKELInt(int32_t value) {
    return create<KEL_Int_Impl>(value);
}

KEL_Double* KEL_CALL CreateKELDouble(double value) {
    return create<KEL_Double_Impl>(value);
}

KEL_String* KEL_CALL CreateKELString(const char* text) {
    return create<KEL_String_Impl>(text);
}

KEL_guid* KEL_CALL CreateKELGuid(KELGuid value) {
    return create<KEL_guid_Impl>(JHashCode(value));
}

KEL_guid* KEL_CALL CreateKELGuid() {
    return create<KEL_guid_Impl>(JHashCode());
}

KEL_MemBlock* KEL_CALL CreateKELMemBlock(int32_t size, const void* bytes) {
    return create<KEL_MemBlock_Impl>(size, bytes);
}

KEL_Array* KEL_CALL CreateKELArray() {
    return create<KEL_Array_Impl>();
}

KEL_Struct* KEL_CALL CreateKELStruct() {
    return create<KEL_Struct_Impl>();
}

KEL_Manager* KEL_CALL CreateKELManager() {
    return create<KEL_Manager_Impl>();
}

KEL_IndexList* KEL_CALL CreateKELIndexList() {
    return create<KEL_IndexList_Impl>();
}

KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Array* items) {
    if (items == nullptr) {
        return CreateKELIndexList();
    }
    auto* array = dynamic_cast<KEL_Array_Impl*>(items);
    return array == nullptr
               ? nullptr
               : orNullWithoutMemory([&] { return KEL_IndexList_Impl::ofItems(*array); });
}

KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Array* keys, KEL_Array* items) {
    auto* first = dynamic_cast<KEL_Array_Impl*>(keys);
    auto* second = dynamic_cast<KEL_Array_Impl*>(items);
    if (first == nullptr || second == nullptr || first == second ||
        first->getCount() != second->getCount()) {
        return nullptr; // one array in both places cannot take the halves of a pair
    }
    return create<KEL_IndexList_Impl>(JPointer<KEL_Array_Impl>::share(first),
                                      JPointer<KEL_Array_Impl>::share(second));
}

KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Struct* variables) {
    if (variables == nullptr) {
        return CreateKELIndexList();
    }
    auto* structure = dynamic_cast<KEL_Struct_Impl*>(variables);
    if (structure == nullptr) {
        auto* holder = dynamic_cast<kel::StructHolder*>(variables);
        structure = holder == nullptr ? nullptr : &holder->inner();
    }
    return structure == nullptr
               ? nullptr
               : orNullWithoutMemory([&] { return KEL_IndexList_Impl::ofVariables(*structure); });
}

KEL_Selector* KEL_CALL CreateKELSelector(KEL_IndexList* list) {
    if (KEL_Impl::isForeign(list)) {
        return nullptr;
    }
    return create<KEL_Selector_Impl>(dynamic_cast<KEL_IndexList_Impl*>(list));
}

KEL_MultiSelector* KEL_CALL CreateKELMultiSelector(KEL_IndexList* list) {
    if (KEL_Impl::isForeign(list)) {
        return nullptr;
    }
    return create<KEL_MultiSelector_Impl>(dynamic_cast<KEL_IndexList_Impl*>(list));
}

MetaKel* KEL_CALL CreateMetaKel(MetaKelDescriptor* descriptor) {
    if (KEL_Impl::isForeign(descriptor)) {
        return nullptr;
    }
    return orNullWithoutMemory([&]() -> MetaKel* {
        JPointer<MetaKel_Impl> made(new MetaKel_Impl());
        made->setDescriptor(descriptor);
        return made.detach();
    });
}

MetaKelDescriptor* KEL_CALL CreateMetaKelDescriptor() {
    return create<MetaKelDescriptor_Impl>();
}

MetaKelVarDescriptor* KEL_CALL CreateMetaKelVarDescriptor() {
    return create<MetaKelVarDescriptor_Impl>();
}

void KEL_CALL DeleteKEL(KEL* value) {
    releaseOnce(value);
}

void KEL_CALL DeleteKELException(KELException* exception) {
    releaseOnce(exception);
}

void KEL_CALL DeleteStringEnumeration(StringEnumeration* enumeration) {
    releaseOnce(enumeration);
}
