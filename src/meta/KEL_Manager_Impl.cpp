#include "meta/KEL_Manager_Impl.h"

#include "meta/KELFactory.h"
#include "values/ChildCursor.h"
#include "values/KELException_Impl.h"

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
    if (index == -1) {
        elements_->addElement(element);
    } else {
        elements_->setElementAt(element, index);
    }
    notifyChanged();
}

KEL_Impl* KEL_Manager_Impl::getKel(JHashCode hashCode) const {
    const int32_t index = indexOf(hashCode);
    if (index == -1) {
        throw new KELNoSuchElementException_Impl("getKel: no such element");
    }
    return elements_->elementAtRef(index);
}

KEL* KEL_Manager_Impl::getKel(JHashCode hashCode) {
    return static_cast<const KEL_Manager_Impl*>(this)->getKel(hashCode);
}

void KEL_Manager_Impl::removeKel(JHashCode hashCode) {
    const int32_t index = indexOf(hashCode);
    if (index == -1) {
        throw new KELNoSuchElementException_Impl("removeKel: KEL not found.");
    }
    elements_->removeElementAt(index);
    notifyChanged();
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
    made->takeContents(*this);
    return made.detach();
}

bool KEL_Manager_Impl::equalsWithoutChildren(const KEL_Impl& other) const {
    const auto* manager = dynamic_cast<const KEL_Manager_Impl*>(&other);
    return manager != nullptr && manager->size() == size();
}

void KEL_Manager_Impl::takeContents(const KEL_Impl& source) {
    const auto& manager = dynamic_cast<const KEL_Manager_Impl&>(source);
    const JPointer<JVector<KEL_Impl>> shared(new JVector<KEL_Impl>(10, 10));
    for (int32_t i = 0; i < manager.size(); ++i) {
        shared->addElement(manager.elements_->elementAtRef(i));
    }
    elements_ = shared;
}
