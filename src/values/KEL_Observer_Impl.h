/// \file
/// KEL_Observer_Impl: a host's observer as an observer of the runtime.
#pragma once

#include "runtime/JObservable.h"
#include "runtime/Storage.h"

#include <cstdint>
#include <kel/KEL_Observable.h>

/// Wraps a host's observer, which it does not own. The identity of the wrapper is the address of
/// that observer, so observers are searched for as all other objects are.
class KEL_Observer_Impl final : public JObserver, public kel::Stored {
public:
    explicit KEL_Observer_Impl(KEL_Observer* observer)
        : JObject(identityFor(observer)), observer_(observer) {}

    /// Returns the identity of the wrapper of an observer. It differs from every drawn identity,
    /// whose version is 4.
    static JHashCode identityFor(const KEL_Observer* observer) {
        const auto address = uint64_t{reinterpret_cast<std::uintptr_t>(observer)};
        return {static_cast<uint32_t>(address), 0, static_cast<uint32_t>(address >> 32), 0};
    }

    /// Calls the host's observer with the observable as a value.
    void update(JObservable* observable) override {
        observer_->update(dynamic_cast<KEL*>(observable));
    }

private:
    KEL_Observer* observer_;
};
