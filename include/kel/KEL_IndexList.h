/// \file
/// KEL_IndexList: a list of (key, item) pairs.
#pragma once

#include <kel/KEL_Array.h>
#include <kel/KEL_Struct.h>

class KEL_IndexList;

/// Operations of an index list: two arrays side by side, the key at an index belonging to the item
/// at the same index. Keys and items are shared, never copied.
///
/// Every successful change of the list marks it changed and notifies its observers once, when it is
/// complete; the observers of the arrays that it changes are called before. addPairs notifies once
/// for each pair. setKeyValue and its typed forms change keys, which notify, not the list.
///
/// The arrays belong to their other holders too, who may change them behind the list's back: pairs
/// exist up to the end of the shorter one.
///
/// "By identity" looks for the identity (KEL::equals): the very object, or another one that was
/// given the same. "By value" looks for equal contents (KEL::equalsValue). A null argument is never
/// an error: the operation does nothing and answers null, false or -1; only a null text that
/// becomes a key or an item is an empty one, where the comment says so. Values that the library did
/// not make are treated as null where one would be stored, and are never found by identity.
///
/// What is not found throws a KELNoSuchElementException and changes nothing: "Key not found in
/// list." (a key by identity), "Item not found in list." (an item by identity) or "Key value not
/// found in list." (a key by value). A bad index throws KELArrayIndexOutOfBoundsException "Array
/// index out of bounds.".
class KELInterface_IndexList_V1 {
public:
    KEL_SLOTS(
        /// The item of the key, by identity, borrowed. Throws if the key is not found.
        virtual KEL* getItem(const KEL* key) = 0;,
        /// The same from a constant list.
        virtual KEL* getItem(const KEL* key) const = 0;)
    KEL_SLOTS(
        /// The key of the item, by identity, borrowed. Throws if the item is not found.
        virtual KEL* getKey(const KEL* item) = 0;,
        /// The same from a constant list.
        virtual KEL* getKey(const KEL* item) const = 0;)
    /// True when key is a key of the list, by identity.
    virtual bool containsKey(const KEL* key) const = 0;
    /// Removes the pair of the key, by identity. Throws if the key is not found.
    virtual void removeKey(const KEL* key) = 0;
    /// Removes the pair of the item, by identity. Throws if the item is not found.
    virtual void removeItem(const KEL* item) = 0;
    /// True when item is an item of the list, by identity.
    virtual bool containsItem(const KEL* item) const = 0;
    /// The first index of the key, by identity, or -1.
    virtual int32_t indexOfKey(const KEL* key) const = 0;
    /// The first index of the item, by identity, or -1.
    virtual int32_t indexOfItem(const KEL* item) const = 0;
    KEL_SLOTS(
        /// The item of the first key equal to keyValue, borrowed. Throws if no key is.
        virtual KEL* getItemOfKeyValue(const KEL* keyValue) = 0;,
        /// The same from a constant list.
        virtual KEL* getItemOfKeyValue(const KEL* keyValue) const = 0;)
    /// True when a key is equal to keyValue.
    virtual bool containsKeyValue(const KEL* keyValue) const = 0;
    /// The first index of a key equal to keyValue, or -1.
    virtual int32_t indexOfKeyValue(const KEL* keyValue) const = 0;
    /// The item of the first String key with this text, borrowed. Throws as getItemOfKeyValue.
    virtual KEL* getItemOfKeyText(const char* text) const = 0;
    /// Removes the pairs whose key is equal to keyValue, with one notification. The pair that moves
    /// into a removed one's place is passed over, so of two equal neighbours the second stays.
    /// Throws if no key is equal.
    virtual void removeKeyValue(const KEL* keyValue) = 0;
    /// Puts newItem in the place of the key's item, by identity. Throws if the key is not found.
    virtual void setItemOfKey(const KEL* key, KEL* newItem) = 0;
    /// Puts newKey in the place of the item's key, by identity. Throws if the item is not found.
    virtual void setKeyOfItem(const KEL* item, KEL* newKey) = 0;
    /// Puts newItem in the place of the item of the first key equal to keyValue. Throws if no key
    /// is.
    virtual void setItemOfKeyValue(const KEL* keyValue, KEL* newItem) = 0;

    /// setKeyValue with a String of this text. Null is ignored.
    virtual void setKeyString(const KEL* keyValue, const char* text) = 0;
    /// setKeyValue with a guid of this value.
    virtual void setKeyguid(const KEL* keyValue, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// The form for a float: forwards to the double.
        virtual void setKeyDouble(const KEL* keyValue, float value) = 0;,
        /// setKeyValue with a Double of this value.
        virtual void setKeyDouble(const KEL* keyValue, double value) = 0;)
    KEL_SLOTS(
        /// The form for a long, low 32 bits: forwards to the 32-bit integer.
        virtual void setKeyInt(const KEL* keyValue, long value) = 0;,
        /// The form for an unsigned long, low 32 bits: forwards to the 32-bit integer.
        virtual void setKeyInt(const KEL* keyValue, unsigned long value) = 0;,
        /// setKeyValue with an Int of this value.
        virtual void setKeyInt(const KEL* keyValue, int32_t value) = 0;)
    /// setKeyValue with a Boolean of this value.
    virtual void setKeyBoolean(const KEL* keyValue, bool value) = 0;
    /// Lets every key equal to keyValue take over newValue's contents; the keys stay the same
    /// objects and notify their own observers. Nothing is assigned if one of them would refuse.
    /// Throws if no key is equal.
    /// \throws KELNoSuchTypeException "Can't set the value when types are not equal!"
    virtual void setKeyValue(const KEL* keyValue, const KEL* newValue) = 0;

    /// Appends the pair of a new String with this text (empty for null) and item; returns its
    /// index.
    virtual int32_t addKeyString(const char* text, KEL* item) = 0;
    /// Appends the pair of a new guid and item; returns its index.
    virtual int32_t addKeyguid(const JHashCode& value, KEL* item) = 0;
    KEL_SLOTS(
        /// The form for a float: forwards to the double.
        virtual int32_t addKeyDouble(float value, KEL* item) = 0;,
        /// Appends the pair of a new Double and item; returns its index.
        virtual int32_t addKeyDouble(double value, KEL* item) = 0;)
    KEL_SLOTS(
        /// The form for a long, low 32 bits: forwards to the 32-bit integer.
        virtual int32_t addKeyInt(long value, KEL* item) = 0;,
        /// The form for an unsigned long, low 32 bits: forwards to the 32-bit integer.
        virtual int32_t addKeyInt(unsigned long value, KEL* item) = 0;,
        /// Appends the pair of a new Int and item; returns its index.
        virtual int32_t addKeyInt(int32_t value, KEL* item) = 0;)
    /// Appends the pair of a new Boolean and item; returns its index.
    virtual int32_t addKeyBoolean(bool value, KEL* item) = 0;

    /// Appends the pair of key and a new String with this text (empty for null); returns its index.
    virtual int32_t addItemString(KEL* key, const char* text) = 0;
    /// Appends the pair of key and a new guid; returns its index.
    virtual int32_t addItemguid(KEL* key, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// The form for a float: forwards to the double.
        virtual int32_t addItemDouble(KEL* key, float value) = 0;,
        /// Appends the pair of key and a new Double; returns its index.
        virtual int32_t addItemDouble(KEL* key, double value) = 0;)
    KEL_SLOTS(
        /// The form for a long, low 32 bits: forwards to the 32-bit integer.
        virtual int32_t addItemInt(KEL* key, long value) = 0;,
        /// The form for an unsigned long, low 32 bits: forwards to the 32-bit integer.
        virtual int32_t addItemInt(KEL* key, unsigned long value) = 0;,
        /// Appends the pair of key and a new Int; returns its index.
        virtual int32_t addItemInt(KEL* key, int32_t value) = 0;)
    /// Appends the pair of key and a new Boolean; returns its index.
    virtual int32_t addItemBoolean(KEL* key, bool value) = 0;

    /// Appends the pair of a new String key and a new String with this text (empty for null);
    /// returns its index. A null key adds nothing here and below: -1.
    virtual int32_t addNamedString(const char* key, const char* text) = 0;
    /// Appends the pair of a new String key and a new guid; returns its index.
    virtual int32_t addNamedguid(const char* key, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// The form for a float: forwards to the double.
        virtual int32_t addNamedDouble(const char* key, float value) = 0;,
        /// Appends the pair of a new String key and a new Double; returns its index.
        virtual int32_t addNamedDouble(const char* key, double value) = 0;)
    KEL_SLOTS(
        /// The form for a long, low 32 bits: forwards to the 32-bit integer.
        virtual int32_t addNamedInt(const char* key, long value) = 0;,
        /// The form for an unsigned long, low 32 bits: forwards to the 32-bit integer.
        virtual int32_t addNamedInt(const char* key, unsigned long value) = 0;,
        /// Appends the pair of a new String key and a new Int; returns its index.
        virtual int32_t addNamedInt(const char* key, int32_t value) = 0;)
    /// Appends the pair of a new String key and a new Boolean; returns its index.
    virtual int32_t addNamedBoolean(const char* key, bool value) = 0;

    /// Appends the pair and returns its index; -1 if one is null, which changes nothing.
    virtual int32_t addPair(KEL* key, KEL* item) = 0;
    /// Inserts the pair at index, from 0 to the count. Throws on a bad index.
    virtual void insertPair(KEL* key, KEL* item, int32_t index) = 0;
    /// Appends, sharing them, the pairs of other whose keys are not here yet by identity; one
    /// notification for each. \return 0, or -1 for null
    virtual int32_t addPairs(KEL_IndexList* other) = 0;
    /// Removes the pair at index. Throws on a bad index.
    virtual void removePair(int32_t index) = 0;
    /// Exchanges two pairs. Throws on a bad index.
    virtual void swapPairs(int32_t a, int32_t b) = 0;
    /// Removes every pair; one notification, also when there was none.
    virtual void removeAllPairs() = 0;
    /// The number of pairs.
    virtual int32_t getCount() const = 0;
    KEL_SLOTS(
        /// The array of the keys itself, borrowed.
        virtual KEL_Array* getKeys() = 0;,
        /// The same from a constant list.
        virtual const KEL_Array* getKeys() const = 0;)
    KEL_SLOTS(
        /// The array of the items itself, borrowed.
        virtual KEL_Array* getItems() = 0;,
        /// The same from a constant list.
        virtual const KEL_Array* getItems() const = 0;)
    /// The key at index, borrowed. Throws on a bad index.
    virtual KEL* getKeyAt(int32_t index) const = 0;
    /// The item at index, borrowed. Throws on a bad index.
    virtual KEL* getItemAt(int32_t index) const = 0;
    /// Puts newItem in the place of the item at index. Null is ignored. Throws on a bad index.
    virtual void setItemAt(int32_t index, KEL* newItem) = 0;

protected:
    ~KELInterface_IndexList_V1() = default;
};

/// A list of pairs, the first of each being its key. Kind 12.
class KEL_IndexList : public virtual KEL,
                      public virtual KEL_Observable,
                      public virtual KELInterface_IndexList_V1 {
protected:
    ~KEL_IndexList() = default;
};

/// A new empty list, count 1, owned by the caller; null when out of memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList();

/// A new list over the given array of items, which it shares. The keys are new Strings with the
/// items' text forms (empty for an item without one). A null array gives an empty list. Null for an
/// array that the library did not make, and when out of memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Array* items);

/// A new list over both given arrays, which it shares. Null when one is null or not made by the
/// library, when their counts differ, and when out of memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Array* keys, KEL_Array* items);

/// A new list of a struct's variables in the order of their names: the keys are new Strings with
/// the names, the items the values themselves. A variable that holds null gives no pair. A null
/// struct gives an empty list. Null for a struct that the library did not make, and when out of
/// memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Struct* variables);
