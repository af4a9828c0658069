/// \file
/// KEL_IndexList_Impl: an IndexList value.
#pragma once

#include "values/KEL_Array_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <kel/KEL_IndexList.h>

/// Implements KEL_IndexList over two arrays, which other holders can change meanwhile: every
/// operation uses only the pairs that both arrays have.
class KEL_IndexList_Impl final : public KEL_Impl, public KEL_IndexList {
public:
    /// Makes an empty list over two new arrays.
    KEL_IndexList_Impl() : KEL_IndexList_Impl(makeArray(), makeArray()) {}

    /// Makes the same value with a given identity.
    explicit KEL_IndexList_Impl(const JHashCode& identity)
        : JObject(identity), keys_(makeArray()), items_(makeArray()) {}

    /// Makes a list over the given arrays, which are not null and not the same array.
    KEL_IndexList_Impl(const JPointer<KEL_Array_Impl>& keys, const JPointer<KEL_Array_Impl>& items)
        : JObject(IdentityLater()), keys_(keys), items_(items) {}

    /// Makes the same value with a given identity.
    KEL_IndexList_Impl(const JHashCode& identity, const JPointer<KEL_Array_Impl>& keys,
                       const JPointer<KEL_Array_Impl>& items)
        : JObject(identity), keys_(keys), items_(items) {}

    /// Returns a new list over items, with their texts as keys; the caller owns it.
    static KEL_IndexList_Impl* ofItems(KEL_Array_Impl& items);

    /// Returns a new list of a struct's variables; the caller owns it.
    static KEL_IndexList_Impl* ofVariables(const KEL_Struct_Impl& variables);

    int32_t getType() const override { return KELKind_IndexList; }

    // KELInterface_IndexList_V1
    KEL* getItem(const KEL* key) override { return itemOf(key); }
    KEL* getItem(const KEL* key) const override { return itemOf(key); }
    KEL* getKey(const KEL* item) override { return keyOf(item); }
    KEL* getKey(const KEL* item) const override { return keyOf(item); }
    bool containsKey(const KEL* key) const override { return indexOfKey(key) != -1; }
    void removeKey(const KEL* key) override;
    void removeItem(const KEL* item) override;
    bool containsItem(const KEL* item) const override { return indexOfItem(item) != -1; }
    int32_t indexOfKey(const KEL* key) const override;
    int32_t indexOfItem(const KEL* item) const override;
    KEL* getItemOfKeyValue(const KEL* keyValue) override { return itemOfValue(keyValue); }
    KEL* getItemOfKeyValue(const KEL* keyValue) const override { return itemOfValue(keyValue); }
    bool containsKeyValue(const KEL* keyValue) const override {
        return indexOfKeyValue(keyValue) != -1;
    }
    int32_t indexOfKeyValue(const KEL* keyValue) const override;
    KEL* getItemOfKeyText(const char* text) const override;
    void removeKeyValue(const KEL* keyValue) override;
    void setItemOfKey(const KEL* key, KEL* newItem) override;
    void setKeyOfItem(const KEL* item, KEL* newKey) override;
    void setItemOfKeyValue(const KEL* keyValue, KEL* newItem) override;
    void setKeyString(const KEL* keyValue, const char* text) override;
    void setKeyguid(const KEL* keyValue, const JHashCode& value) override;
    void setKeyDouble(const KEL* keyValue, float value) override {
        setKeyDouble(keyValue, double{value});
    }
    void setKeyDouble(const KEL* keyValue, double value) override;
    void setKeyInt(const KEL* keyValue, long value) override {
        setKeyInt(keyValue, static_cast<int32_t>(value));
    }
    void setKeyInt(const KEL* keyValue, unsigned long value) override {
        setKeyInt(keyValue, static_cast<int32_t>(value));
    }
    void setKeyInt(const KEL* keyValue, int32_t value) override;
    void setKeyBoolean(const KEL* keyValue, bool value) override;
    void setKeyValue(const KEL* keyValue, const KEL* newValue) override;
    int32_t addKeyString(const char* text, KEL* item) override;
    int32_t addKeyguid(const JHashCode& value, KEL* item) override;
    int32_t addKeyDouble(float value, KEL* item) override {
        return addKeyDouble(double{value}, item);
    }
    int32_t addKeyDouble(double value, KEL* item) override;
    int32_t addKeyInt(long value, KEL* item) override {
        return addKeyInt(static_cast<int32_t>(value), item);
    }
    int32_t addKeyInt(unsigned long value, KEL* item) override {
        return addKeyInt(static_cast<int32_t>(value), item);
    }
    int32_t addKeyInt(int32_t value, KEL* item) override;
    int32_t addKeyBoolean(bool value, KEL* item) override;
    int32_t addItemString(KEL* key, const char* text) override;
    int32_t addItemguid(KEL* key, const JHashCode& value) override;
    int32_t addItemDouble(KEL* key, float value) override {
        return addItemDouble(key, double{value});
    }
    int32_t addItemDouble(KEL* key, double value) override;
    int32_t addItemInt(KEL* key, long value) override {
        return addItemInt(key, static_cast<int32_t>(value));
    }
    int32_t addItemInt(KEL* key, unsigned long value) override {
        return addItemInt(key, static_cast<int32_t>(value));
    }
    int32_t addItemInt(KEL* key, int32_t value) override;
    int32_t addItemBoolean(KEL* key, bool value) override;
    int32_t addNamedString(const char* key, const char* text) override;
    int32_t addNamedguid(const char* key, const JHashCode& value) override;
    int32_t addNamedDouble(const char* key, float value) override {
        return addNamedDouble(key, double{value});
    }
    int32_t addNamedDouble(const char* key, double value) override;
    int32_t addNamedInt(const char* key, long value) override {
        return addNamedInt(key, static_cast<int32_t>(value));
    }
    int32_t addNamedInt(const char* key, unsigned long value) override {
        return addNamedInt(key, static_cast<int32_t>(value));
    }
    int32_t addNamedInt(const char* key, int32_t value) override;
    int32_t addNamedBoolean(const char* key, bool value) override;
    int32_t addPair(KEL* key, KEL* item) override;
    void insertPair(KEL* key, KEL* item, int32_t index) override;
    int32_t addPairs(KEL_IndexList* other) override;
    void removePair(int32_t index) override;
    void swapPairs(int32_t a, int32_t b) override;
    void removeAllPairs() override;
    int32_t getCount() const override;
    KEL_Array* getKeys() override { return keys_.get(); }
    const KEL_Array* getKeys() const override { return keys_.get(); }
    KEL_Array* getItems() override { return items_.get(); }
    const KEL_Array* getItems() const override { return items_.get(); }
    KEL* getKeyAt(int32_t index) const override;
    KEL* getItemAt(int32_t index) const override;
    void setItemAt(int32_t index, KEL* newItem) override;

    // KEL_IndexList
    bool containsKeyText(const char* text) const override;
    void setItemOfKeyText(const char* text, KEL* newItem) override;
    void removeKeyText(const char* text) override;
    // KEL_Impl: the children are the two arrays.
    bool copiesChildren() const override { return true; }
    bool nextChild(kel::ChildCursor& cursor) const override;
    KEL_Impl* copyWithoutChildren() const override { return new KEL_IndexList_Impl(); }
    void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child) override;
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void notifyContentsChanged() override { notifyBoth(); }

private:
    static JPointer<KEL_Array_Impl> makeArray() {
        return JPointer<KEL_Array_Impl>(new KEL_Array_Impl());
    }

    KEL_Impl* itemOf(const KEL* key) const;
    KEL_Impl* keyOf(const KEL* item) const;
    KEL_Impl* itemOfValue(const KEL* keyValue) const;

    /// Returns the index that a search has returned. Throws the message for -1 (not found).
    static int32_t found(int32_t index, const char* message);

    /// Throws on an index at which there is no pair.
    void checkIndex(int32_t index) const;

    /// Makes a change, which cannot fail, of both arrays. Observers are called when it is complete,
    /// so that they never see half a pair.
    template <class Change> void changeBoth(const Change& change);

    /// Notifies of a change of both arrays: first the observers of the keys, then those of the
    /// items, then those of the list.
    void notifyBoth();

    /// Replaces one half of a pair. The array notifies first, then the list.
    void setInOne(JPointer<KEL_Array_Impl> array, KEL* value, int32_t index);

    /// Makes room for this many more pairs; storing them then needs no memory.
    /// \throws JOutOfMemoryException
    void makeRoomForPairs(int32_t count);

    /// Appends a pair of which one half was just made, taking over its one reference.
    int32_t addMadeKey(KEL_Impl* key, KEL* item);
    int32_t addMadeItem(KEL* key, KEL_Impl* item);
    int32_t addNamed(const char* key, KEL_Impl* item);

    /// Does the same as setKeyValue with a value just made, which is then released.
    void setMadeKey(const KEL* keyValue, KEL_Impl* newValue);

    JPointer<KEL_Array_Impl> keys_;
    JPointer<KEL_Array_Impl> items_;
};
