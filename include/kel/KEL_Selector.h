/// \file
/// KEL_Selector: a selection of one entry of an index list.
#pragma once

#include <kel/KEL_IndexList.h>

/// Operations of a selector. The selection is a key of the list, or nothing. Selecting an item
/// selects its key. A call that really changes the selection marks the selector changed and
/// notifies its observers once.
///
/// \par Ownership
/// The selector shares the list and the selected key. An argument is only looked up in the list.
class KELInterface_Selector_V1 {
public:
    /// Selects the list's key with this key's identity. Null clears the selection.
    /// \return false, without a change, if the key is not in the list
    virtual bool selectKey(KEL* key) = 0;
    /// Selects the key of an item of the list, by identity.
    /// \return false, without a change, if the item is not in the list, and for null
    virtual bool selectItem(KEL* item) = 0;
    /// Clears the selection.
    /// \return true
    virtual bool clearSelection() = 0;
    /// Does the same as clearSelection. It has a slot of its own.
    virtual bool deselect() = 0;
    KEL_SLOTS(
        /// Returns the selected key, borrowed. Returns null if nothing is selected.
        virtual KEL* getSelectedKey() = 0;,
        /// Returns the same key from a constant selector, borrowed too.
        virtual KEL* getSelectedKey() const = 0;)
    /// Returns the list's item for the selected key, found by the key's identity and borrowed.
    /// Returns null if nothing is selected.
    /// \throws KELNoSuchElementException "Key not found in list." if the key has left the list
    virtual KEL* getSelectedItem() const = 0;
    /// Returns the list's item for the first key that is equal in value to the selected one,
    /// borrowed. Returns null if nothing is selected. Can run out of memory.
    /// \throws KELNoSuchElementException "Key value not found in list."
    virtual KEL* getSelectedItemByKeyValue() const = 0;
    /// Returns true if key is the selected key, by identity. If nothing is selected, returns true
    /// for null.
    virtual bool isSelectedKey(const KEL* key) const = 0;
    /// Returns true if item is the item of the selected key, by identity. If nothing is selected,
    /// returns true for null. Returns false if the selected key has left the list, because it then
    /// has no item.
    virtual bool isSelectedItem(const KEL* item) const = 0;
    /// Returns the list whose keys can be selected, borrowed.
    virtual KEL_IndexList* getList() const = 0;
    /// Replaces the list, which the selector shares, and notifies. Needs no memory. The selection
    /// does not change, even if its key is not in the new list. Null, or the current list, does
    /// nothing.
    virtual void setList(KEL_IndexList* list) = 0;

protected:
    ~KELInterface_Selector_V1() = default;
};

/// A selection of one entry of an index list. Kind 10. Two selectors are equal in value if they
/// share the list and the selection. A copy is therefore equal to its source.
class KEL_Selector : public virtual KEL, public virtual KELInterface_Selector_V1 {
protected:
    ~KEL_Selector() = default;
};

/// Returns a new selector with count 1, owned by the caller. It shares the list, or has a new empty
/// list for null. Nothing is selected. Returns null for a list that the library did not create, and
/// when out of memory.
KEL_API KEL_Selector* KEL_CALL CreateKELSelector(KEL_IndexList* list);
