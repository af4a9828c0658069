/// \file
/// KEL_Selector: one chosen entry of an index list.
#pragma once

#include <kel/KEL_IndexList.h>

/// Operations of a selector. The selection is a key of the list, or nothing; choosing an item
/// chooses its key. A selection that really changes marks the selector changed and notifies its
/// observers once.
class KELInterface_Selector_V1 {
public:
    /// Selects the list's key with this key's identity; null clears the selection. \return false,
    /// without a change, when it is no key of the list
    virtual bool selectKey(KEL* key) = 0;
    /// Selects the key of an item of the list, by identity. \return false, without a change, when
    /// it is no item of the list, and for null
    virtual bool selectItem(KEL* item) = 0;
    /// Selects nothing. \return true
    virtual bool clearSelection() = 0;
    /// The same as clearSelection, kept as a slot of its own.
    virtual bool deselect() = 0;
    KEL_SLOTS(
        /// The selected key, borrowed; null when nothing is selected.
        virtual KEL* getSelectedKey() = 0;,
        /// The same from a constant selector.
        virtual KEL* getSelectedKey() const = 0;)
    KEL_SLOTS(
        /// The list's item for the selected key, found by the key's identity, borrowed; null when
        /// nothing is selected.
        /// \throws KELNoSuchElementException "Key not found in list." when the key has left it
        virtual KEL* getSelectedItem() = 0;,
        /// From a constant selector: the item of the first key that is equal to the selected one.
        /// \throws KELNoSuchElementException "Key value not found in list."
        virtual KEL* getSelectedItem() const = 0;)
    /// True when key is the selected one, by identity; with nothing selected, true for null.
    virtual bool isSelectedKey(const KEL* key) const = 0;
    /// True when item is that of the selected key, by identity; with nothing selected, true for
    /// null. Throws as getSelectedItem.
    virtual bool isSelectedItem(const KEL* item) const = 0;
    /// The list that is selected from, borrowed.
    virtual KEL_IndexList* getList() const = 0;
    /// Selects from another list and notifies. The selection stays as it is, also when its key is
    /// not in the new list. Null, and the list that is used already, do nothing.
    virtual void setList(KEL_IndexList* list) = 0;

protected:
    ~KELInterface_Selector_V1() = default;
};

/// A choice of one among the entries of an index list. Kind 10. Two selectors are equal in value if
/// they share list and selection; a copy does.
class KEL_Selector : public virtual KEL, public virtual KELInterface_Selector_V1 {
protected:
    ~KEL_Selector() = default;
};

/// A new selector over the list, which it shares, or over a new empty list for null. Nothing is
/// selected. Count 1, owned by the caller; null for a list that the library did not make, and when
/// out of memory.
KEL_API KEL_Selector* KEL_CALL CreateKELSelector(KEL_IndexList* list);
