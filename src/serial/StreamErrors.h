/// \file
/// The failures of byte streams as the failures of value streams.
#pragma once

#include "values/KELException_Impl.h"

namespace kel {

/// Runs an operation on a medium; a JIOException becomes a KELIOException with its message.
template <class Operation> decltype(auto) withMediumErrors(const Operation& operation) {
    try {
        return operation();
    } catch (const JIOException& failure) {
        const JPointer<JString> message(failure.getMessage());
        throw new KELIOException_Impl(message.isNull() ? generalKelMessage : message->chars());
    }
}

} // namespace kel
