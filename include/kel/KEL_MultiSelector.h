/// \file
/// KEL_MultiSelector: any number of chosen entries of an index list.
#pragma once

#include <kel/KEL_IndexList.h>

/// Operations of a multi-selector. The selected keys stand without duplicates in the order of their
/// selection; choosing an item chooses its key. A selection that really changes marks the selector
/// changed and notifies its observers once.
class KELInterface_MultiSelector_V1 {
public:
    /// Adds the list's key with this key's identity to the selection. \return false, without a
    /// change, when it is no key of the list, and for null; true also when it was selected already
    virtual bool selectKey(KEL* key) = 0;
    /// Adds the key of an item of the list. \return false, without a change, when it is no item of
    /// the list, and for null
    virtual bool selectItem(KEL* item) = 0;
    /// Takes a key from the selection. \return false, without a change, when it was not selected
    virtual bool deselectKey(KEL* key) = 0;
    /// Takes the key of an item from the selection. \return false, without a change, when it was
    /// not selected
    virtual bool deselectItem(KEL* item) = 0;
    /// Selects nothing.
    virtual void clearSelection() = 0;
    /// The same as clearSelection, kept as a slot of its own.
    virtual void deselectAll() = 0;
    /// The array of the selected keys itself, borrowed. Changing it changes the selection.
    virtual KEL_Array* getSelectedKeys() const = 0;
    /// A new array with the list's item for each selected key, in order; the caller owns it.
    /// \throws KELNoSuchElementException "Key not found in list." when a key has left the list
    virtual KEL_Array* getSelectedItems() const = 0;
    /// True when the key is selected, by identity; for null, when nothing is.
    virtual bool isKeySelected(const KEL* key) const = 0;
    /// True when the key of the item is selected; for null, when nothing is.
    virtual bool isItemSelected(const KEL* item) const = 0;
    /// The list that is selected from, borrowed.
    virtual KEL_IndexList* getList() const = 0;
    /// Selects from another list and notifies. The selection stays as it is. Null, and the list
    /// that is used already, do nothing.
    virtual void setList(KEL_IndexList* list) = 0;

protected:
    ~KELInterface_MultiSelector_V1() = default;
};

/// A choice of several among the entries of an index list. Kind 11. Two multi-selectors are equal
/// in value if they share the list and the same keys in the same order; a copy does.
class KEL_MultiSelector : public virtual KEL, public virtual KELInterface_MultiSelector_V1 {
protected:
    ~KEL_MultiSelector() = default;
};

/// A new multi-selector over the list, which it shares, or over a new empty list for null. Nothing
/// is selected. Count 1, owned by the caller; null for a list that the library did not make, and
/// when out of memory.
KEL_API KEL_MultiSelector* KEL_CALL CreateKELMultiSelector(KEL_IndexList* list);
