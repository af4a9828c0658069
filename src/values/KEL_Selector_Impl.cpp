#include "values/KEL_Selector_Impl.h"

#include "values/KeepAlive.h"

#include <utility>

void KEL_Selector_Impl::select(KEL_Impl* key) {
    if (selection_.get() != key) {
        const auto self = kel::keepAlive(this); // a dropped value can be its last holder
        selection_ = JPointer<KEL_Impl>::share(key);
        notifyChanged();
    }
}

bool KEL_Selector_Impl::selectKey(KEL* key) {
    KEL_Impl* own = list_.keyLike(key);
    if (own == nullptr && key != nullptr) {
        return false;
    }
    select(own);
    return true;
}

bool KEL_Selector_Impl::selectItem(KEL* item) {
    KEL_Impl* key = list_.keyOfItem(item);
    if (key == nullptr) {
        return false;
    }
    select(key);
    return true;
}

bool KEL_Selector_Impl::clearSelection() {
    select(nullptr);
    return true;
}

KEL* KEL_Selector_Impl::getSelectedItem() const {
    return list_->getItem(selection_.get());
}

KEL* KEL_Selector_Impl::getSelectedItemByKeyValue() const {
    return list_->getItemOfKeyValue(selection_.get());
}

bool KEL_Selector_Impl::isSelectedKey(const KEL* key) const {
    return selection_.isNull() ? key == nullptr : selection_->equals(key);
}

bool KEL_Selector_Impl::isSelectedItem(const KEL* item) const {
    if (selection_.isNull()) {
        return item == nullptr;
    }
    const int32_t index = list_->indexOfKey(selection_.get());
    return index != -1 && list_->getItemAt(index)->equals(item);
}

void KEL_Selector_Impl::setList(KEL_IndexList* list) {
    const auto self = kel::keepAlive(this);
    if (list_.replace(list)) {
        notifyChanged();
    }
}

KEL_Impl* KEL_Selector_Impl::copyWithoutChildren() const {
    auto* made = new KEL_Selector_Impl(list_.get());
    made->selection_ = selection_;
    return made;
}

bool KEL_Selector_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* selector = dynamic_cast<const KEL_Selector_Impl*>(&other);
    return selector != nullptr && selector->list_.get() == list_.get() &&
           selector->selection_.get() == selection_.get();
}

void KEL_Selector_Impl::swapContents(KEL_Impl& prepared) noexcept {
    auto& selector = dynamic_cast<KEL_Selector_Impl&>(prepared);
    std::swap(list_, selector.list_);
    std::swap(selection_, selector.selection_);
}
