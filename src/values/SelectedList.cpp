#include "values/SelectedList.h"

namespace kel {

SelectedList::SelectedList(KEL_IndexList_Impl* list)
    : list_(list == nullptr ? JPointer<KEL_IndexList_Impl>(new KEL_IndexList_Impl())
                            : JPointer<KEL_IndexList_Impl>::share(list)) {}

bool SelectedList::replace(KEL_IndexList* list) {
    auto* implementation = dynamic_cast<KEL_IndexList_Impl*>(list);
    if (implementation == nullptr || list_->equals(list)) {
        return false;
    }
    list_ = JPointer<KEL_IndexList_Impl>::share(implementation);
    return true;
}

KEL_Impl* SelectedList::keyLike(const KEL* key) const {
    const int32_t index = list_->indexOfKey(key);
    return index == -1 ? nullptr : KEL_Impl::of(list_->getKeyAt(index));
}

KEL_Impl* SelectedList::keyOfItem(const KEL* item) const {
    const int32_t index = list_->indexOfItem(item);
    return index == -1 ? nullptr : KEL_Impl::of(list_->getKeyAt(index));
}

} // namespace kel
