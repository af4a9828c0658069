#include "values/KEL_IndexList_Impl.h"

#include "runtime/RunToEnd.h"
#include "values/ChildCursor.h"
#include "values/Conversions.h"
#include "values/KELException_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KeepAlive.h"
#include "values/TreeCopy.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view keysName = "keys"; // distinguishes a copied child from the items

constexpr const char* keyNotFound = "Key not found in list.";
constexpr const char* itemNotFound = "Item not found in list.";
constexpr const char* keyValueNotFound = "Key value not found in list.";

/// Returns a new key for an item: its text form, empty if it has none.
/// \throws JOutOfMemoryException
JPointer<KEL_Impl> keyFor(const KEL_Impl& item) {
    if (!kel::hasScalarForm(item)) {
        return JPointer<KEL_Impl>(new KEL_String_Impl(""));
    }
    KEL_String* text = kel::convertToString(&item);
    const JPointer<KEL_Impl> held(KEL_Impl::of(text));
    if (text == nullptr) {
        kel::throwOutOfMemory();
    }
    return JPointer<KEL_Impl>(new KEL_String_Impl(text->getValue())); // the item can be the text
}

/// Returns a key with this text for a search; null for null.
JPointer<KEL_Impl> textKey(const char* text) {
    return JPointer<KEL_Impl>(KEL_String_Impl::makeOrNull(text));
}

} // namespace

KEL_IndexList_Impl* KEL_IndexList_Impl::ofItems(KEL_Array_Impl& items) {
    const JPointer<KEL_Array_Impl> keys = makeArray();
    for (int32_t i = 0; i < items.getCount(); ++i) {
        keys->adoptElement(keyFor(*items.elementAt(i)));
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

void KEL_IndexList_Impl::notifyBoth() {
    // Held because an observer can release the list or give it other arrays.
    const auto self = kel::keepAlive(this);
    const JPointer<KEL_Array_Impl> keys = keys_;
    const JPointer<KEL_Array_Impl> items = items_;
    kel::runAll([&] { keys->notifyChanged(); }, [&] { items->notifyChanged(); },
                [&] { notifyChanged(); });
}

template <class Change> void KEL_IndexList_Impl::changeBoth(const Change& change) {
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    change(*keys_);
    change(*items_);
    notifyBoth();
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
    return itemOfValue(textKey(text).get());
}

bool KEL_IndexList_Impl::containsKeyText(const char* text) const {
    return containsKeyValue(textKey(text).get());
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

void KEL_IndexList_Impl::removePair(int32_t index) {
    checkIndex(index);
    changeBoth([index](KEL_Array_Impl& array) { array.removeQuietly(index); });
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
    const auto matches = keys_->findToRemove(
        getCount(), [&](const KEL_Impl& key) { return keyValue->equalsValue(&key); });
    found(matches.empty() ? -1 : 0, keyValueNotFound);
    changeBoth([&matches](KEL_Array_Impl& array) { array.removeQuietly(matches); });
}

void KEL_IndexList_Impl::removeKeyText(const char* text) {
    removeKeyValue(textKey(text).get());
}

void KEL_IndexList_Impl::removeAllPairs() {
    changeBoth([](KEL_Array_Impl& array) { array.removeAllQuietly(); });
}

// ---- Replacing ---------------------------------------------------------------------------------

void KEL_IndexList_Impl::setItemAt(int32_t index, KEL* newItem) {
    checkIndex(index);
    if (KEL_Impl::of(newItem) != nullptr) {
        setInOne(items_, newItem, index);
    }
}

void KEL_IndexList_Impl::setInOne(JPointer<KEL_Array_Impl> array, KEL* value, int32_t index) {
    const auto self = kel::keepAlive(this);
    kel::runAll([&] { array->setVar(value, index); }, [&] { notifyChanged(); });
}

void KEL_IndexList_Impl::setItemOfKey(const KEL* key, KEL* newItem) {
    if (key != nullptr && KEL_Impl::of(newItem) != nullptr) {
        setItemAt(found(indexOfKey(key), keyNotFound), newItem);
    }
}

void KEL_IndexList_Impl::setItemOfKeyValue(const KEL* keyValue, KEL* newItem) {
    if (keyValue != nullptr && KEL_Impl::of(newItem) != nullptr) {
        setItemAt(found(indexOfKeyValue(keyValue), keyValueNotFound), newItem);
    }
}

void KEL_IndexList_Impl::setItemOfKeyText(const char* text, KEL* newItem) {
    setItemOfKeyValue(textKey(text).get(), newItem);
}

void KEL_IndexList_Impl::setKeyOfItem(const KEL* item, KEL* newKey) {
    if (item != nullptr && KEL_Impl::of(newKey) != nullptr) {
        setInOne(keys_, newKey, found(indexOfItem(item), itemNotFound));
    }
}

void KEL_IndexList_Impl::setKeyValue(const KEL* keyValue, const KEL* newValue) {
    if (keyValue == nullptr || newValue == nullptr) {
        return;
    }
    // All matches are found, and every step that can fail is done, before the first match is
    // changed: changing one can change what is equal, and its observers can change the list.
    kel::Vector<JPointer<KEL_Impl>> matches;
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
    const KEL_Impl* source = KEL_Impl::of(newValue);
    if (source == nullptr) {
        return;
    }
    kel::Vector<JPointer<KEL_Impl>> contents;
    for (const JPointer<KEL_Impl>& key : matches) {
        contents.push_back(key->prepareContents(*source));
    }
    for (std::size_t i = 0; i < matches.size(); ++i) {
        matches[i]->swapContents(*contents[i]);
    }
    contents.clear(); // before any observer is called, as in every other change
    auto next = matches.begin();
    kel::runToEnd([&] {
        if (next == matches.end()) {
            return false;
        }
        (*next++)->notifyContentsChanged();
        return true;
    });
}

void KEL_IndexList_Impl::swapPairs(int32_t a, int32_t b) {
    checkIndex(a);
    checkIndex(b);
    changeBoth([a, b](KEL_Array_Impl& array) { array.swapQuietly(a, b); });
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
    KEL_Impl* newKey = KEL_Impl::of(key);
    KEL_Impl* newItem = KEL_Impl::of(item);
    if (newKey == nullptr || newItem == nullptr) {
        return;
    }
    makeRoomForPairs(1); // first: then the second half cannot fail once the first is in
    keys_->insertQuietly(newKey, index);
    items_->insertQuietly(newItem, index);
    notifyBoth();
}

int32_t KEL_IndexList_Impl::addPairs(KEL_IndexList* other) {
    if (other == nullptr) {
        return -1;
    }
    // Only the pairs that the other list has now are added. They are all collected, and room is
    // made, before the first one is stored, because an observer can change either list meanwhile.
    const JPointer<KEL_Array_Impl> keys = makeArray();
    const JPointer<KEL_Array_Impl> items = makeArray();
    for (int32_t i = 0; i < other->getCount(); ++i) {
        KEL_Impl* key = KEL_Impl::of(other->getKeyAt(i));
        KEL_Impl* item = KEL_Impl::of(other->getItemAt(i));
        if (key != nullptr && item != nullptr && !containsKey(key)) {
            keys->appendQuietly(key);
            items->appendQuietly(item);
        }
    }
    makeRoomForPairs(keys->getCount());
    const auto self = kel::keepAlive(this);
    int32_t next = 0;
    kel::runToEnd([&] {
        if (next == keys->getCount()) {
            return false;
        }
        KEL_Impl* key = keys->elementAt(next);
        KEL_Impl* item = items->elementAt(next++);
        if (!containsKey(key)) {
            addPair(key, item);
        }
        return true;
    });
    return 0;
}

void KEL_IndexList_Impl::makeRoomForPairs(int32_t count) {
    keys_->makeRoom(count);
    items_->makeRoom(count);
}

// ---- Walks -------------------------------------------------------------------------------------

bool KEL_IndexList_Impl::nextChild(kel::ChildCursor& cursor) const {
    switch (++cursor.index) {
    case 0:
        cursor.name = keysName;
        cursor.value = keys_.get();
        return true;
    case 1:
        cursor.name = "items";
        cursor.value = items_.get();
        return true;
    default:
        return false;
    }
}

void KEL_IndexList_Impl::adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) {
    JPointer<KEL_Array_Impl>& place = name == keysName ? keys_ : items_;
    place = JPointer<KEL_Array_Impl>::share(&dynamic_cast<KEL_Array_Impl&>(*child));
}

bool KEL_IndexList_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    return other.getType() == KELKind_IndexList;
}

void KEL_IndexList_Impl::swapContents(KEL_Impl& prepared) noexcept {
    auto& list = dynamic_cast<KEL_IndexList_Impl&>(prepared);
    keys_->swapContents(*list.keys_);
    items_->swapContents(*list.items_);
}
