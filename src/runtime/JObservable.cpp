#include "runtime/JObservable.h"

#include "runtime/RunToEnd.h"

void JObservable::addObserver(JObserver* observer) {
    if (observers_.isNull()) {
        observers_ = new JVector<JObserver>(5, 5);
    }
    if (!observers_->contains(observer)) {
        observers_->addElement(observer);
    }
}

void JObservable::deleteObserver(JObserver* observer) {
    if (observers_.isValid()) {
        observers_->removeElement(observer);
    }
}

bool JObservable::containsObserver(const JObserver* observer) const {
    return observers_.isValid() && observers_->contains(observer);
}

void JObservable::notifyObservers() {
    if (observers_.isNull() || !changed_) {
        return;
    }
    // A callback can drop the last reference to this object, or its whole list.
    const JPointer<JObservable> self = JPointer<JObservable>::share(this);
    int32_t next = 0;
    kel::runToEnd([&] {
        if (observers_.isNull() || next >= observers_->size()) {
            clearChanged();
            return false;
        }
        const JPointer<JObserver> observer(observers_->elementAt(next++));
        observer->update(this);
        return true;
    });
}

void JObservable::deleteObservers() {
    observers_.clear();
}

int32_t JObservable::countObservers() const {
    return observers_.isNull() ? 0 : observers_->size();
}
