#include "runtime/JObservable.h"

#include "runtime/RunToEnd.h"

#include <kel/JPointer.h>

namespace {

template <class Observers, class Wanted>
bool contains(const Observers& list, const Wanted& wanted) {
    return list != nullptr && list->indexOf(wanted) != -1;
}

template <class Observers, class Wanted> void remove(const Observers& list, const Wanted& wanted) {
    const int32_t index = list == nullptr ? -1 : list->indexOf(wanted);
    if (index != -1) {
        list->remove(index);
    }
}

} // namespace

void JObservable::DeleteObservers::operator()(Observers* observers) const noexcept {
    delete observers;
}

void JObservable::addObserver(JObserver* observer) {
    if (observer == nullptr || containsObserver(observer)) {
        return;
    }
    if (observers_ != nullptr) {
        observers_->append(observer);
        return;
    }
    auto made = std::make_unique<Observers>(); // a list without observers is a change
    made->makeRoom(2);                         // most values have one or two
    made->append(observer);
    observers_.reset(made.release());
}

void JObservable::deleteObserver(JObserver* observer) {
    remove(observers_, observer);
}

void JObservable::deleteObserverWith(const JHashCode& identity) {
    remove(observers_, identity);
}

bool JObservable::containsObserver(const JObserver* observer) const {
    return contains(observers_, observer);
}

bool JObservable::containsObserverWith(const JHashCode& identity) const {
    return contains(observers_, identity);
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
        const auto observer = JPointer<JObserver>::share((*observers_)[next++]);
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
