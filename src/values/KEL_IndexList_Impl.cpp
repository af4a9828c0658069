#include "values/KEL_IndexList_Impl.h"

#include "values/ChildCursor.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/TreeWalk.h"

#include <algorithm>
#include <vector>

namespace {

constexpr const char* keyNotFound = "Key not found in list.";
constexpr const char* itemNotFound = "Item not found in list.";
constexpr const char* keyValueNotFound = "Key value not found in list.";

/// A reference to a value that the operation itself, or an observer of one of the arrays, may set
/// free meanwhile: an argument, or the list.
JPointer<KEL_Impl> hold(const KEL* value) {
    return JPointer<KEL_Impl>::share(const_cast<KEL_Impl*>(KEL_Impl::of(value)));
}

} // namespace

KEL_IndexList_Impl* KEL_IndexList_Impl::ofItems(KEL_Array_Impl& items) {
    const JPointer<KEL_Array_Impl> keys = makeArray();
    for (int32_t i = 0; i < items.getCount(); ++i) {
        KEL_String* text = items.getString(i);
        const JPointer<KEL_Impl> held(KEL_Impl::of(text));
        keys->addString(text == nullptr ? "" : text->getValue());
    }
    return new KEL_IndexList_Impl(keys, JPointer<KEL_Array_Impl>::share(&items));
}

KEL_IndexList_Impl* KEL_IndexList_Impl::ofVariables(const KEL_Struct_Impl& variables) {
    const JPointer<KEL_Array_Impl> keys = makeArray();
    const JPointer<KEL_Array_Impl> items = makeArray();
    kel::ChildCursor cursor(variables);
    while (cursor.next()) {
        if (cursor.value != nullptr) {
            keys->adoptElement(JPointer<KEL_Impl>(new KEL_String_Impl(cursor.name)));
            items->adoptElement(JPointer<KEL_Impl>::share(cursor.value));
        }
    }
    return new KEL_IndexList_Impl(keys, items);
}

int32_t KEL_IndexList_Impl::getCount() const {
    return std::min(keys_->getCount(), items_->getCount());
}

int32_t KEL_IndexList_Impl::found(int32_t index, const char* message) {
    if (index == -1) {
        throw new KELNoSuchElementException_Impl(message);
    }
    return index;
}

void KEL_IndexList_Impl::checkIndex(int32_t index) const {
    if (index < 0 || index >= getCount()) {
        throw new KELArrayIndexOutOfBoundsException_Impl("Array index out of bounds.");
    }
}

// ---- Looking up --------------------------------------------------------------------------------

int32_t KEL_IndexList_Impl::indexOfKey(const KEL* key) const {
    const int32_t index = keys_->indexOfVar(key);
    return index < getCount() ? index : -1;
}

int32_t KEL_IndexList_Impl::indexOfItem(const KEL* item) const {
    const int32_t index = items_->indexOfVar(item);
    return index < getCount() ? index : -1;
}

int32_t KEL_IndexList_Impl::indexOfKeyValue(const KEL* keyValue) const {
    const int32_t count = keyValue == nullptr ? 0 : getCount();
    for (int32_t i = 0; i < count; ++i) {
        if (keyValue->equalsValue(keys_->elementAt(i))) {
            return i;
        }
    }
    return -1;
}

KEL_Impl* KEL_IndexList_Impl::itemOf(const KEL* key) const {
    return key == nullptr ? nullptr : items_->elementAt(found(indexOfKey(key), keyNotFound));
}

KEL_Impl* KEL_IndexList_Impl::keyOf(const KEL* item) const {
    return item == nullptr ? nullptr : keys_->elementAt(found(indexOfItem(item), itemNotFound));
}

KEL_Impl* KEL_IndexList_Impl::itemOfValue(const KEL* keyValue) const {
    return keyValue == nullptr
               ? nullptr
               : items_->elementAt(found(indexOfKeyValue(keyValue), keyValueNotFound));
}

KEL* KEL_IndexList_Impl::getItemOfKeyText(const char* text) const {
    if (text == nullptr) {
        return nullptr;
    }
    const JPointer<KEL_Impl> key(new KEL_String_Impl(text));
    return itemOfValue(key.get());
}

KEL* KEL_IndexList_Impl::getKeyAt(int32_t index) const {
    checkIndex(index);
    return keys_->elementAt(index);
}

KEL* KEL_IndexList_Impl::getItemAt(int32_t index) const {
    checkIndex(index);
    return items_->elementAt(index);
}

// ---- Removing ----------------------------------------------------------------------------------

void KEL_IndexList_Impl::erase(int32_t index) {
    // An observer of the keys may change the items before their turn, and both may be one array.
    keys_->removeVar(index);
    if (items_.get() != keys_.get() && index < items_->getCount()) {
        items_->removeVar(index);
    }
}

void KEL_IndexList_Impl::removePair(int32_t index) {
    checkIndex(index);
    const JPointer<KEL_Impl> self = hold(this);
    erase(index);
    notifyChanged();
}

void KEL_IndexList_Impl::removeKey(const KEL* key) {
    if (key != nullptr) {
        removePair(found(indexOfKey(key), keyNotFound));
    }
}

void KEL_IndexList_Impl::removeItem(const KEL* item) {
    if (item != nullptr) {
        removePair(found(indexOfItem(item), itemNotFound));
    }
}

void KEL_IndexList_Impl::removeKeyValue(const KEL* keyValue) {
    if (keyValue == nullptr) {
        return;
    }
    const JPointer<KEL_Impl> self = hold(this);
    const JPointer<KEL_Impl> held = hold(keyValue); // it may be one of the keys
    bool removed = false;
    for (int32_t i = 0; i < getCount(); ++i) {
        if (keyValue->equalsValue(keys_->elementAt(i))) {
            erase(i);
            removed = true;
        }
    }
    found(removed ? 0 : -1, keyValueNotFound);
    notifyChanged();
}

void KEL_IndexList_Impl::removeAllPairs() {
    const JPointer<KEL_Impl> self = hold(this);
    keys_->removeAllVars();
    items_->removeAllVars();
    notifyChanged();
}

// ---- Replacing ---------------------------------------------------------------------------------

void KEL_IndexList_Impl::setItemAt(int32_t index, KEL* newItem) {
    checkIndex(index);
    if (newItem != nullptr) {
        const JPointer<KEL_Impl> self = hold(this);
        items_->setVar(newItem, index);
        notifyChanged();
    }
}

void KEL_IndexList_Impl::setItemOfKey(const KEL* key, KEL* newItem) {
    if (key != nullptr && newItem != nullptr) {
        setItemAt(found(indexOfKey(key), keyNotFound), newItem);
    }
}

void KEL_IndexList_Impl::setItemOfKeyValue(const KEL* keyValue, KEL* newItem) {
    if (keyValue != nullptr && newItem != nullptr) {
        setItemAt(found(indexOfKeyValue(keyValue), keyValueNotFound), newItem);
    }
}

void KEL_IndexList_Impl::setKeyOfItem(const KEL* item, KEL* newKey) {
    if (item != nullptr && newKey != nullptr) {
        const int32_t index = found(indexOfItem(item), itemNotFound);
        const JPointer<KEL_Impl> self = hold(this);
        keys_->setVar(newKey, index);
        notifyChanged();
    }
}

void KEL_IndexList_Impl::setKeyValue(const KEL* keyValue, const KEL* newValue) {
    if (keyValue == nullptr || newValue == nullptr) {
        return;
    }
    // All matches are found, and held, before the first changes: changing one may change what is
    // equal, and its observers may change the list.
    std::vector<JPointer<KEL_Impl>> matches;
    for (int32_t i = 0; i < getCount(); ++i) {
        KEL_Impl* key = keys_->elementAt(i);
        if (keyValue->equalsValue(key)) {
            if (key->getType() != newValue->getType()) {
                throw new KELNoSuchTypeException_Impl(
                    "Can't set the value when types are not equal!");
            }
            matches.push_back(JPointer<KEL_Impl>::share(key));
        }
    }
    found(matches.empty() ? -1 : 0, keyValueNotFound);
    const JPointer<KEL_Impl> held = hold(newValue);
    for (const JPointer<KEL_Impl>& key : matches) {
        key->assign(newValue);
    }
}

void KEL_IndexList_Impl::setMadeKey(const KEL* keyValue, KEL_Impl* newValue) {
    const JPointer<KEL_Impl> made(newValue);
    setKeyValue(keyValue, made.get());
}

void KEL_IndexList_Impl::setKeyString(const KEL* keyValue, const char* text) {
    if (text != nullptr) {
        setMadeKey(keyValue, new KEL_String_Impl(text));
    }
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

void KEL_IndexList_Impl::swapPairs(int32_t a, int32_t b) {
    checkIndex(a);
    checkIndex(b);
    const JPointer<KEL_Impl> self = hold(this);
    keys_->swapVars(a, b);
    if (items_.get() != keys_.get() && std::max(a, b) < items_->getCount()) {
        items_->swapVars(a, b);
    }
    notifyChanged();
}

// ---- Adding ------------------------------------------------------------------------------------

int32_t KEL_IndexList_Impl::addPair(KEL* key, KEL* item) {
    if (KEL_Impl::of(key) == nullptr || KEL_Impl::of(item) == nullptr) {
        return -1;
    }
    const int32_t index = getCount();
    insertPair(key, item, index);
    return index;
}

void KEL_IndexList_Impl::insertPair(KEL* key, KEL* item, int32_t index) {
    if (index < 0 || index > getCount()) {
        throw new KELArrayIndexOutOfBoundsException_Impl("Array index out of bounds.");
    }
    if (KEL_Impl::of(key) == nullptr || KEL_Impl::of(item) == nullptr) {
        return;
    }
    // An observer of the keys may let go of the list and of the item before the item's turn.
    const JPointer<KEL_Impl> self = hold(this);
    const JPointer<KEL_Impl> held = hold(item);
    keys_->insertVar(key, index);
    items_->insertVar(item, std::min(index, items_->getCount()));
    notifyChanged();
}

int32_t KEL_IndexList_Impl::addPairs(KEL_IndexList* other) {
    if (other == nullptr) {
        return -1;
    }
    const JPointer<KEL_Impl> self = hold(this);
    const JPointer<KEL_Impl> held = hold(other);
    for (int32_t i = 0; i < other->getCount(); ++i) {
        KEL* key = other->getKeyAt(i);
        if (!containsKey(key)) {
            addPair(key, other->getItemAt(i));
        }
    }
    return 0;
}

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
    return key == nullptr ? -1 : addKeyString(key, made.get());
}

int32_t KEL_IndexList_Impl::addKeyString(const char* text, KEL* item) {
    return addMadeKey(new KEL_String_Impl(text), item);
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
    return addMadeItem(key, new KEL_String_Impl(text));
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
    return addNamed(key, new KEL_String_Impl(text));
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

// ---- Walks -------------------------------------------------------------------------------------

bool KEL_IndexList_Impl::nextChild(kel::ChildCursor& cursor) const {
    switch (++cursor.index) {
    case 0:
        cursor.value = keys_.get();
        return true;
    case 1:
        cursor.value = items_.get();
        return true;
    default:
        return false;
    }
}

void KEL_IndexList_Impl::adoptCopiedChild(std::string_view, JPointer<KEL_Impl>&& child) {
    JPointer<KEL_Array_Impl>& place = keysCopied_ ? items_ : keys_;
    place = JPointer<KEL_Array_Impl>::share(&dynamic_cast<KEL_Array_Impl&>(*child));
    keysCopied_ = true;
}

bool KEL_IndexList_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == KELKind_IndexList;
}

void KEL_IndexList_Impl::takeContents(const KEL_Impl& source) {
    const JPointer<KEL_Impl> copied(kel::copyTreeFor(source, *this));
    const auto& list = dynamic_cast<const KEL_IndexList_Impl&>(*copied);
    keys_ = list.keys_;
    items_ = list.items_;
}
