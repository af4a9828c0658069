#include "runtime/JObservable.h"

#include "runtime/RunToEnd.h"

void JObservable::addObserver(JObserver* observer) {
    if (observers_ == nullptr) {
        observers_.reset(new JVector<JObserver>(5, 5));
    }
    if (!observers_->contains(observer)) {
        observers_->addElement(observer);
    }
}

void JObservable::deleteObserver(JObserver* observer) {
    if (observers_ != nullptr) {
        observers_->removeElement(observer);
    }
}

bool JObservable::containsObserver(const JObserver* observer) const {
    return observers_ != nullptr && observers_->contains(observer);
}

void JObservable::notifyObservers() {
    if (observers_ == nullptr || !hasChanged()) {
        return;
    }
    // A callback can drop the last reference to this object, or its whole list.
    const JPointer<JObservable> self = JPointer<JObservable>::share(this);
    int32_t next = 0;
    kel::runToEnd([&] {
        if (observers_ == nullptr || next >= observers_->size()) {
            clearChanged();
            return false;
        }
        const JPointer<JObserver> observer(observers_->elementAt(next++));
        observer->update(this);
        return true;
    });
}

void JObservable::deleteObservers() {
    observers_.reset();
}

int32_t JObservable::countObservers() const {
    return observers_ == nullptr ? 0 : observers_->size();
}
