#include "meta/KEL_Manager_Impl.h"

#include "meta/KELFactory.h"
#include "values/ChildCursor.h"
#include "values/KELException_Impl.h"
#include "values/KeepAlive.h"

#include <utility>

int32_t KEL_Manager_Impl::indexOf(const JHashCode& hashCode) const {
    const JObject key(hashCode);
    return elements_->indexOf(&key);
}

void KEL_Manager_Impl::addKel(KEL* value) {
    KEL_Impl* element = KEL_Impl::of(value);
    if (element == nullptr) {
        return;
    }
    JHashCode identity;
    const int32_t index = indexOf(element->getHashCode(identity));
    const auto self = kel::keepAlive(this); // a dropped value can be its last holder
    if (index == -1) {
        elements_->addElement(element);
    } else {
        elements_->setElementAt(element, index);
    }
    notifyChanged();
}

KEL_Impl* KEL_Manager_Impl::getKelBase(JHashCode hashCode) const {
    const int32_t index = indexOf(hashCode);
    if (index == -1) {
        throw new KELNoSuchElementException_Impl("getKel: no such element");
    }
    return elements_->elementAtRef(index);
}

void KEL_Manager_Impl::removeKel(JHashCode hashCode) {
    const int32_t index = indexOf(hashCode);
    if (index == -1) {
        throw new KELNoSuchElementException_Impl("removeKel: KEL not found.");
    }
    const auto self = kel::keepAlive(this);
    elements_->removeElementAt(index);
    notifyChanged();
}

void KEL_Manager_Impl::removeAllKels() {
    const auto self = kel::keepAlive(this);
    elements_->removeAllElements();
}

KEL* KEL_Manager_Impl::getKelAt(int32_t index) const {
    if (index < 0 || index >= size()) {
        throw new KELNoSuchElementException_Impl("getKel: no such element");
    }
    return elements_->elementAtRef(index);
}

KEL* KEL_Manager_Impl::createKel(int32_t kind) {
    return kel::createValue(kind, nullptr);
}

KEL* KEL_Manager_Impl::createKel(int32_t kind, JHashCode hashCode) {
    return kel::createValue(kind, &hashCode);
}

bool KEL_Manager_Impl::nextChild(kel::ChildCursor& cursor) const {
    if (++cursor.index >= elements_->size()) {
        return false;
    }
    cursor.value = elements_->data()[cursor.index];
    return true;
}

KEL_Impl* KEL_Manager_Impl::copyWithoutChildren() const {
    JPointer<KEL_Manager_Impl> made(new KEL_Manager_Impl());
    for (int32_t i = 0; i < size(); ++i) {
        made->elements_->addElement(elements_->elementAtRef(i));
    }
    return made.detach();
}

bool KEL_Manager_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* manager = dynamic_cast<const KEL_Manager_Impl*>(&other);
    return manager != nullptr && manager->size() == size();
}

void KEL_Manager_Impl::swapContents(KEL_Impl& prepared) noexcept {
    std::swap(elements_, dynamic_cast<KEL_Manager_Impl&>(prepared).elements_);
}
