/// \file
/// KEL_MultiSelector: a selection of any number of entries of an index list.
#pragma once

#include <kel/KEL_IndexList.h>

/// Operations of a multi-selector. It keeps the selected keys without duplicates, in the order in
/// which they were selected. Selecting an item selects its key. A call that really changes the
/// selection marks the selector changed and notifies its observers once.
///
/// \par Ownership
/// The selector shares the list and the selected keys. An argument is only looked up in the list.
class KELInterface_MultiSelector_V1 {
public:
    /// Adds the list's key with this key's identity to the selection. Can run out of memory.
    /// \return true, even if the key was selected already; false, without a change, if the key is
    ///         not in the list, and for null
    virtual bool selectKey(KEL* key) = 0;
    /// Adds the key of an item of the list to the selection. Can run out of memory.
    /// \return false, without a change, if the item is not in the list, and for null
    virtual bool selectItem(KEL* item) = 0;
    /// Removes a key from the selection.
    /// \return false, without a change, if the key was not selected
    virtual bool deselectKey(KEL* key) = 0;
    /// Removes the key of an item from the selection.
    /// \return false, without a change, if the key was not selected
    virtual bool deselectItem(KEL* item) = 0;
    /// Clears the selection. Notifies the observers of the array of selected keys even if it was
    /// empty.
    virtual void clearSelection() = 0;
    /// Does the same as clearSelection. It has a slot of its own.
    virtual void deselectAll() = 0;
    /// Returns the selector's own array of the selected keys, borrowed. Changing the array changes
    /// the selection.
    virtual KEL_Array* getSelectedKeys() const = 0;
    /// Returns a new array with the list's item for each selected key, in order, owned by the
    /// caller. Can run out of memory.
    /// \throws KELNoSuchElementException "Key not found in list." if a key has left the list
    virtual KEL_Array* getSelectedItems() const = 0;
    /// Returns true if the key is selected, by identity. For null, returns true if nothing is
    /// selected.
    virtual bool isKeySelected(const KEL* key) const = 0;
    /// Returns true if the key of the item is selected. For null, returns true if nothing is
    /// selected.
    virtual bool isItemSelected(const KEL* item) const = 0;
    /// Returns the list whose keys can be selected, borrowed.
    virtual KEL_IndexList* getList() const = 0;
    /// Replaces the list, which the selector shares, and notifies. Needs no memory. The selection
    /// does not change. Null, or the current list, does nothing.
    virtual void setList(KEL_IndexList* list) = 0;

protected:
    ~KELInterface_MultiSelector_V1() = default;
};

/// A selection of any number of entries of an index list. Kind 11. Two multi-selectors are equal in
/// value if they share the list and have the same keys in the same order. A copy is therefore equal
/// to its source.
class KEL_MultiSelector : public virtual KEL, public virtual KELInterface_MultiSelector_V1 {
protected:
    ~KEL_MultiSelector() = default;
};

/// Returns a new multi-selector with count 1, owned by the caller. It shares the list, or has a new
/// empty list for null. Nothing is selected. Returns null for a list that the library did not
/// create, and when out of memory.
KEL_API KEL_MultiSelector* KEL_CALL CreateKELMultiSelector(KEL_IndexList* list);
