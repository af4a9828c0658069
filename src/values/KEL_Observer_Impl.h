/// \file
/// KEL_Observer_Impl: a host's observer as an observer of the runtime.
#pragma once

#include "runtime/JObservable.h"
#include "runtime/Storage.h"

#include <kel/KEL_Observable.h>

/// Wraps a host's observer, which it does not own.
class KEL_Observer_Impl final : public JObserver, public kel::Stored {
public:
    explicit KEL_Observer_Impl(KEL_Observer* observer) : observer_(observer) {}

    /// Calls the host's observer with the observable as a value.
    void update(JObservable* observable) override {
        observer_->update(dynamic_cast<KEL*>(observable));
    }

    /// Returns whether this wraps the given observer, that is, the same pointer.
    bool wraps(const KEL_Observer* observer) const { return observer_ == observer; }

    /// Returns the wrapper of observer in a list that can be null, borrowed; null when there is
    /// none.
    static KEL_Observer_Impl* find(const JVector<JObserver>* list, const KEL_Observer* observer) {
        for (int32_t i = 0; list != nullptr && i < list->size(); ++i) {
            auto* wrapper = dynamic_cast<KEL_Observer_Impl*>(list->elementAtRef(i));
            if (wrapper != nullptr && wrapper->wraps(observer)) {
                return wrapper;
            }
        }
        return nullptr;
    }

private:
    KEL_Observer* observer_;
};
