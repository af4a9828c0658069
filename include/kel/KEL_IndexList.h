/// \file
/// KEL_IndexList: a list of (key, item) pairs.
#pragma once

#include <kel/KEL_Array.h>
#include <kel/KEL_Struct.h>

class KEL_IndexList;

/// Operations of an index list. It consists of two parallel arrays: the key at an index belongs to
/// the item at the same index. Keys and items are shared, never copied.
///
/// Every successful change of the list marks it changed and notifies its observers once, when the
/// change is complete. The observers of the arrays that it changes are called first. addPairs
/// notifies once for each pair. setKeyValue and its typed forms change keys; the keys notify, the
/// list does not.
///
/// Other holders of the arrays can change them directly. Pairs then exist up to the end of the
/// shorter array.
///
/// "By identity" compares identities (KEL::equals): the same object, or another one that was given
/// the same identity. "By value" compares contents (KEL::equalsValue). A null argument, null text
/// included, is never an error: the operation does nothing and returns null, false or -1. A value
/// that the library did not create is treated as null where it would be stored, and is never found
/// by identity.
///
/// A failed lookup throws and changes nothing. Four failures have short names below:
///
/// - "Unknown key" means KELNoSuchElementException "Key not found in list.", by identity.
/// - "Unknown item" means KELNoSuchElementException "Item not found in list.", by identity.
/// - "Unknown key value" means KELNoSuchElementException "Key value not found in list.", by value.
/// - "Bad index" means KELArrayIndexOutOfBoundsException "Array index out of bounds.".
///
/// \par Ownership
/// The list shares the keys and items that it stores: it adds a reference of its own to each.
class KELInterface_IndexList_V1 {
public:
    KEL_SLOTS(
        /// Returns the item of the key, by identity, borrowed. Throws on an unknown key.
        virtual KEL* getItem(const KEL* key) = 0;,
        /// Returns the same item from a constant list, borrowed too. Throws on an unknown key.
        virtual KEL* getItem(const KEL* key) const = 0;)
    KEL_SLOTS(
        /// Returns the key of the item, by identity, borrowed. Throws on an unknown item.
        virtual KEL* getKey(const KEL* item) = 0;,
        /// Returns the same key from a constant list, borrowed too. Throws on an unknown item.
        virtual KEL* getKey(const KEL* item) const = 0;)
    /// Returns true if key is a key of the list, by identity.
    virtual bool containsKey(const KEL* key) const = 0;
    /// Removes the pair of the key, by identity. Throws on an unknown key.
    virtual void removeKey(const KEL* key) = 0;
    /// Removes the pair of the item, by identity. Throws on an unknown item.
    virtual void removeItem(const KEL* item) = 0;
    /// Returns true if item is an item of the list, by identity.
    virtual bool containsItem(const KEL* item) const = 0;
    /// Returns the first index of the key, by identity, or -1.
    virtual int32_t indexOfKey(const KEL* key) const = 0;
    /// Returns the first index of the item, by identity, or -1.
    virtual int32_t indexOfItem(const KEL* item) const = 0;
    KEL_SLOTS(
        /// Returns the item of the first key that equals keyValue, borrowed. Throws on an unknown
        /// key value. Can run out of memory.
        virtual KEL* getItemOfKeyValue(const KEL* keyValue) = 0;,
        /// Returns the same item from a constant list, borrowed too. Throws on an unknown key
        /// value. Can run out of memory.
        virtual KEL* getItemOfKeyValue(const KEL* keyValue) const = 0;)
    /// Returns true if a key equals keyValue. Can run out of memory.
    virtual bool containsKeyValue(const KEL* keyValue) const = 0;
    /// Returns the first index of a key that equals keyValue, or -1. Can run out of memory.
    virtual int32_t indexOfKeyValue(const KEL* keyValue) const = 0;
    /// Returns the item of the first String key with this text, borrowed. Throws on an unknown key
    /// value. Can run out of memory.
    virtual KEL* getItemOfKeyText(const char* text) const = 0;
    /// Removes the pairs whose key equals keyValue and notifies once. After each removal the scan
    /// skips the next pair, so the second of two equal neighbours remains. Throws on an unknown key
    /// value. Can run out of memory.
    virtual void removeKeyValue(const KEL* keyValue) = 0;
    /// Replaces the item of the key, by identity, with newItem. Throws on an unknown key. Needs no
    /// memory.
    virtual void setItemOfKey(const KEL* key, KEL* newItem) = 0;
    /// Replaces the key of the item, by identity, with newKey. Throws on an unknown item. Needs no
    /// memory.
    virtual void setKeyOfItem(const KEL* item, KEL* newKey) = 0;
    /// Replaces the item of the first key that equals keyValue with newItem. Throws on an unknown
    /// key value.
    virtual void setItemOfKeyValue(const KEL* keyValue, KEL* newItem) = 0;

    /// Calls setKeyValue with a String of this text. Null is ignored.
    virtual void setKeyString(const KEL* keyValue, const char* text) = 0;
    /// Calls setKeyValue with a guid of this value.
    virtual void setKeyguid(const KEL* keyValue, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual void setKeyDouble(const KEL* keyValue, float value) = 0;,
        /// Calls setKeyValue with a Double of this value.
        virtual void setKeyDouble(const KEL* keyValue, double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual void setKeyInt(const KEL* keyValue, long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual void setKeyInt(const KEL* keyValue, unsigned long value) = 0;,
        /// Calls setKeyValue with an Int of this value.
        virtual void setKeyInt(const KEL* keyValue, int32_t value) = 0;)
    /// Calls setKeyValue with a Boolean of this value.
    virtual void setKeyBoolean(const KEL* keyValue, bool value) = 0;
    /// Assigns newValue's contents to every key that equals keyValue. The keys remain the same
    /// objects and notify their own observers. If one of them would refuse, nothing is assigned.
    /// Throws on an unknown key value.
    /// \throws KELNoSuchTypeException "Can't set the value when types are not equal!"
    /// \throws KELMemBlockException "Cannot write past the end of the memory block." for a block of
    ///         another size
    virtual void setKeyValue(const KEL* keyValue, const KEL* newValue) = 0;

    /// Appends a pair of a new String with this text and item, and returns its index.
    virtual int32_t addKeyString(const char* text, KEL* item) = 0;
    /// Appends a pair of a new guid and item, and returns its index.
    virtual int32_t addKeyguid(const JHashCode& value, KEL* item) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual int32_t addKeyDouble(float value, KEL* item) = 0;,
        /// Appends a pair of a new Double and item, and returns its index.
        virtual int32_t addKeyDouble(double value, KEL* item) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual int32_t addKeyInt(long value, KEL* item) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual int32_t addKeyInt(unsigned long value, KEL* item) = 0;,
        /// Appends a pair of a new Int and item, and returns its index.
        virtual int32_t addKeyInt(int32_t value, KEL* item) = 0;)
    /// Appends a pair of a new Boolean and item, and returns its index.
    virtual int32_t addKeyBoolean(bool value, KEL* item) = 0;

    /// Appends a pair of key and a new String with this text, and returns its index.
    virtual int32_t addItemString(KEL* key, const char* text) = 0;
    /// Appends a pair of key and a new guid, and returns its index.
    virtual int32_t addItemguid(KEL* key, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual int32_t addItemDouble(KEL* key, float value) = 0;,
        /// Appends a pair of key and a new Double, and returns its index.
        virtual int32_t addItemDouble(KEL* key, double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual int32_t addItemInt(KEL* key, long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual int32_t addItemInt(KEL* key, unsigned long value) = 0;,
        /// Appends a pair of key and a new Int, and returns its index.
        virtual int32_t addItemInt(KEL* key, int32_t value) = 0;)
    /// Appends a pair of key and a new Boolean, and returns its index.
    virtual int32_t addItemBoolean(KEL* key, bool value) = 0;

    /// Appends a pair of a new String key and a new String with this text, and returns its index.
    virtual int32_t addNamedString(const char* key, const char* text) = 0;
    /// Appends a pair of a new String key and a new guid, and returns its index.
    virtual int32_t addNamedguid(const char* key, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual int32_t addNamedDouble(const char* key, float value) = 0;,
        /// Appends a pair of a new String key and a new Double, and returns its index.
        virtual int32_t addNamedDouble(const char* key, double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual int32_t addNamedInt(const char* key, long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual int32_t addNamedInt(const char* key, unsigned long value) = 0;,
        /// Appends a pair of a new String key and a new Int, and returns its index.
        virtual int32_t addNamedInt(const char* key, int32_t value) = 0;)
    /// Appends a pair of a new String key and a new Boolean, and returns its index.
    virtual int32_t addNamedBoolean(const char* key, bool value) = 0;

    /// Appends the pair and returns its index. Returns -1 if key or item is null, which changes
    /// nothing.
    virtual int32_t addPair(KEL* key, KEL* item) = 0;
    /// Inserts the pair at index, from 0 to the count. Throws on a bad index.
    virtual void insertPair(KEL* key, KEL* item, int32_t index) = 0;
    /// Appends the pairs of other whose keys are not in the list yet, by identity. The lists share
    /// keys and items. Notifies once for each.
    /// \return 0, or -1 for null
    virtual int32_t addPairs(KEL_IndexList* other) = 0;
    /// Removes the pair at index. Throws on a bad index.
    virtual void removePair(int32_t index) = 0;
    /// Exchanges two pairs. Throws on a bad index.
    virtual void swapPairs(int32_t a, int32_t b) = 0;
    /// Removes every pair and notifies once, even if the list was empty.
    virtual void removeAllPairs() = 0;
    /// Returns the number of pairs.
    virtual int32_t getCount() const = 0;
    KEL_SLOTS(
        /// Returns the list's own array of keys, borrowed.
        virtual KEL_Array* getKeys() = 0;,
        /// Returns the same array from a constant list, borrowed too.
        virtual const KEL_Array* getKeys() const = 0;)
    KEL_SLOTS(
        /// Returns the list's own array of items, borrowed.
        virtual KEL_Array* getItems() = 0;,
        /// Returns the same array from a constant list, borrowed too.
        virtual const KEL_Array* getItems() const = 0;)
    /// Returns the key at index, borrowed. Throws on a bad index.
    virtual KEL* getKeyAt(int32_t index) const = 0;
    /// Returns the item at index, borrowed. Throws on a bad index.
    virtual KEL* getItemAt(int32_t index) const = 0;
    /// Replaces the item at index with newItem. Null is ignored. Throws on a bad index. Needs no
    /// memory.
    virtual void setItemAt(int32_t index, KEL* newItem) = 0;

protected:
    ~KELInterface_IndexList_V1() = default;
};

/// A list of (key, item) pairs. Kind 12. The operations declared here look a key up by its text, as
/// getItemOfKeyText does. Null text does nothing or returns false.
///
///     if (colours->containsKeyText("red")) {
///         use(colours->getItemOfKeyText("red"));
///     }
class KEL_IndexList : public virtual KEL,
                      public virtual KEL_Observable,
                      public virtual KELInterface_IndexList_V1 {
public:
    /// Returns true if a String key has this text. Can run out of memory.
    virtual bool containsKeyText(const char* text) const = 0;
    /// Replaces the item of the first String key with this text with newItem, which the list
    /// shares. Throws as setItemOfKeyValue does.
    virtual void setItemOfKeyText(const char* text, KEL* newItem) = 0;
    /// Removes the pairs whose key is a String with this text, as removeKeyValue does. Throws as
    /// removeKeyValue does. Can run out of memory.
    virtual void removeKeyText(const char* text) = 0;

protected:
    ~KEL_IndexList() = default;
};

/// Returns a new empty list with count 1, owned by the caller. Returns null when out of memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList();

/// Returns a new list, owned by the caller, over the given array of items, which it shares. The
/// keys are new Strings with the items' text forms (empty for an item without one). A null array
/// gives an empty list. Returns null for an array that the library did not create, and when out of
/// memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Array* items);

/// Returns a new list, owned by the caller, over both given arrays, which it shares. Returns null
/// in these cases:
/// - one array is null or not created by the library
/// - both are the same array
/// - their counts differ
/// - out of memory
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Array* keys, KEL_Array* items);

/// Returns a new list, owned by the caller, of a struct's variables in ascending order of their
/// names. The keys are new Strings with the names. The items are the values themselves, shared. A
/// variable that holds null gives no pair. A null struct gives an empty list. Returns null for a
/// struct that the library did not create, and when out of memory.
KEL_API KEL_IndexList* KEL_CALL CreateKELIndexList(KEL_Struct* variables);
