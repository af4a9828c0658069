/// \file
/// keepAlive: holds a value for the duration of an operation.
#pragma once

#include "runtime/Reference.h"

#include <kel/KEL.h>

namespace kel {

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
