#include "values/KEL_MultiSelector_Impl.h"

#include "runtime/RunToEnd.h"
#include "values/KeepAlive.h"

#include <utility>

bool KEL_MultiSelector_Impl::select(KEL_Impl* key) {
    if (key == nullptr) {
        return false;
    }
    if (!selectedKeys_->containsVar(key)) {
        selectedKeys_->appendQuietly(key);
        notifyBoth();
    }
    return true;
}

void KEL_MultiSelector_Impl::notifyBoth() {
    const auto self = kel::keepAlive(this); // the array has observers
    const JPointer<KEL_Array_Impl> keys = selectedKeys_;
    kel::runAll([&] { keys->notifyChanged(); }, [&] { notifyChanged(); });
}

bool KEL_MultiSelector_Impl::selectKey(KEL* key) {
    return select(list_.keyLike(key));
}

bool KEL_MultiSelector_Impl::selectItem(KEL* item) {
    return select(list_.keyOfItem(item));
}

bool KEL_MultiSelector_Impl::deselectKey(KEL* key) {
    const int32_t index = selectedKeys_->indexOfVar(key);
    if (index == -1) {
        return false;
    }
    const auto self = kel::keepAlive(this); // the key can be its last holder
    selectedKeys_->removeQuietly(index);
    notifyBoth();
    return true;
}

bool KEL_MultiSelector_Impl::deselectItem(KEL* item) {
    return deselectKey(list_.keyOfItem(item));
}

void KEL_MultiSelector_Impl::clearSelection() {
    const auto self = kel::keepAlive(this);
    const bool changes = selectedKeys_->getCount() > 0;
    selectedKeys_->removeAllQuietly();
    if (changes) {
        notifyBoth();
    } else {
        selectedKeys_->notifyChanged();
    }
}

KEL_Array* KEL_MultiSelector_Impl::getSelectedItems() const {
    JPointer<KEL_Array_Impl> items(new KEL_Array_Impl());
    for (int32_t i = 0; i < selectedKeys_->getCount(); ++i) {
        items->addVar(list_->getItem(selectedKeys_->elementAt(i)));
    }
    return items.detach();
}

bool KEL_MultiSelector_Impl::isKeySelected(const KEL* key) const {
    return key == nullptr ? selectedKeys_->getCount() == 0 : selectedKeys_->containsVar(key);
}

bool KEL_MultiSelector_Impl::isItemSelected(const KEL* item) const {
    if (item == nullptr) {
        return selectedKeys_->getCount() == 0;
    }
    return selectedKeys_->containsVar(list_.keyOfItem(item));
}

void KEL_MultiSelector_Impl::setList(KEL_IndexList* list) {
    const auto self = kel::keepAlive(this); // the old list can be its last holder
    if (list_.replace(list)) {
        notifyChanged();
    }
}

KEL_Impl* KEL_MultiSelector_Impl::copyWithoutChildren() const {
    JPointer<KEL_MultiSelector_Impl> made(new KEL_MultiSelector_Impl(list_.get()));
    for (int32_t i = 0; i < selectedKeys_->getCount(); ++i) {
        made->selectedKeys_->adoptElement(JPointer<KEL_Impl>::share(selectedKeys_->elementAt(i)));
    }
    return made.detach();
}

bool KEL_MultiSelector_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* selector = dynamic_cast<const KEL_MultiSelector_Impl*>(&other);
    if (selector == nullptr || selector->list_.get() != list_.get() ||
        selector->selectedKeys_->getCount() != selectedKeys_->getCount()) {
        return false;
    }
    for (int32_t i = 0; i < selectedKeys_->getCount(); ++i) {
        if (selector->selectedKeys_->elementAt(i) != selectedKeys_->elementAt(i)) {
            return false;
        }
    }
    return true;
}

void KEL_MultiSelector_Impl::swapContents(KEL_Impl& prepared) noexcept {
    auto& selector = dynamic_cast<KEL_MultiSelector_Impl&>(prepared);
    std::swap(list_, selector.list_);
    selectedKeys_->swapContents(*selector.selectedKeys_);
}
