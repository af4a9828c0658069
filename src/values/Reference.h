/// \file
/// Reference: one reference to the implementation of a public interface.
#pragma once

#include <kel/KEL.h>
#include <memory>

namespace kel {

/// Releases one reference.
struct GiveBack {
    template <class T> void operator()(T* target) const { target->release(); }
};

/// Owns one reference to a value or a list of names, which can be a host's own implementation.
template <class T> using Reference = std::unique_ptr<T, GiveBack>;

/// Takes a reference for the duration of an operation, to the operation's own object or to an
/// argument. Observers can release the last other one meanwhile. Returns null for null.
inline Reference<KEL> keepAlive(const KEL* value) {
    auto* held = const_cast<KEL*>(value); // only its count changes
    if (held != nullptr) {
        held->addRef();
    }
    return Reference<KEL>(held);
}

} // namespace kel
