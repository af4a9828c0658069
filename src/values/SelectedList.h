/// \file
/// SelectedList: the list that a selector of either kind selects from.
#pragma once

#include "values/KEL_IndexList_Impl.h"

namespace kel {

/// Shares an index list with the other holders of that list. It always has a list.
class SelectedList {
public:
    /// Shares list, or owns a new empty list for null.
    explicit SelectedList(KEL_IndexList_Impl* list);

    KEL_IndexList_Impl* get() const { return list_.get(); }
    KEL_IndexList_Impl* operator->() const { return list_.get(); }

    /// Shares another list instead.
    /// \return false, with nothing changed, for null, for a list that the library did not make and
    ///         for the present list
    bool replace(KEL_IndexList* list);

    /// Returns the list's own key with key's identity; null when there is none.
    KEL_Impl* keyLike(const KEL* key) const;

    /// Returns the key of an item of the list, searched by identity; null when the list has no such
    /// item.
    KEL_Impl* keyOfItem(const KEL* item) const;

private:
    JPointer<KEL_IndexList_Impl> list_;
};

} // namespace kel
