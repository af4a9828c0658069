/// \file
/// SelectedList: the list that a selector of either kind selects from.
#pragma once

#include "values/KEL_IndexList_Impl.h"

namespace kel {

/// Shares an index list with whoever else holds it; never without one.
class SelectedList {
public:
    /// Shares list, or owns a new empty one for null.
    explicit SelectedList(KEL_IndexList_Impl* list);

    KEL_IndexList_Impl* get() const { return list_.get(); }
    KEL_IndexList_Impl* operator->() const { return list_.get(); }

    /// Shares another list instead. \return false, unchanged, for null, for a list that the library
    /// did not make and for the one that is there
    bool replace(KEL_IndexList* list);

    /// The list's own key with key's identity; null when there is none.
    KEL_Impl* keyLike(const KEL* key) const;

    /// The key of an item of the list, by identity; null when it is none.
    KEL_Impl* keyOfItem(const KEL* item) const;

private:
    JPointer<KEL_IndexList_Impl> list_;
};

} // namespace kel
