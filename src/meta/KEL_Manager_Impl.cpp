#include "meta/KEL_Manager_Impl.h"

#include "meta/KELFactory.h"
#include "values/ChildCursor.h"
#include "values/KELException_Impl.h"
#include "values/KeepAlive.h"

int32_t KEL_Manager_Impl::found(const JHashCode& hashCode, const char* message) const {
    const int32_t index = elements_.indexOf(hashCode);
    if (index == -1) {
        throw new KELNoSuchElementException_Impl(message);
    }
    return index;
}

void KEL_Manager_Impl::addKel(KEL* value) {
    KEL_Impl* element = KEL_Impl::of(value);
    if (element == nullptr) {
        return;
    }
    const int32_t index = elements_.indexOf(element);
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    if (index == -1) {
        elements_.append(element);
    } else {
        elements_.set(element, index);
    }
    notifyChanged();
}

KEL_Impl* KEL_Manager_Impl::getKelBase(JHashCode hashCode) const {
    return elements_[found(hashCode, "getKel: no such element")];
}

void KEL_Manager_Impl::removeKel(JHashCode hashCode) {
    const int32_t index = found(hashCode, "removeKel: KEL not found.");
    const auto self = kel::keepAlive(this);
    elements_.remove(index);
    notifyChanged();
}

void KEL_Manager_Impl::removeAllKels() {
    const auto self = kel::keepAlive(this);
    elements_.clear();
}

KEL* KEL_Manager_Impl::getKelAt(int32_t index) const {
    if (index < 0 || index >= size()) {
        throw new KELNoSuchElementException_Impl("getKel: no such element");
    }
    return elements_[index];
}

KEL* KEL_Manager_Impl::createKel(int32_t kind) {
    return kel::createValue(kind, nullptr);
}

KEL* KEL_Manager_Impl::createKel(int32_t kind, JHashCode hashCode) {
    return kel::createValue(kind, &hashCode);
}

bool KEL_Manager_Impl::nextChild(kel::ChildCursor& cursor) const {
    if (++cursor.index >= size()) {
        return false;
    }
    cursor.value = elements_[cursor.index];
    return true;
}

KEL_Impl* KEL_Manager_Impl::copyWithoutChildren() const {
    JPointer<KEL_Manager_Impl> made(new KEL_Manager_Impl());
    made->elements_.makeRoom(size());
    for (int32_t i = 0; i < size(); ++i) {
        made->elements_.append(elements_[i]);
    }
    return made.detach();
}

bool KEL_Manager_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* manager = dynamic_cast<const KEL_Manager_Impl*>(&other);
    return manager != nullptr && manager->size() == size();
}

void KEL_Manager_Impl::swapContents(KEL_Impl& prepared) noexcept {
    elements_.swap(dynamic_cast<KEL_Manager_Impl&>(prepared).elements_);
}
