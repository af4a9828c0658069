/// \file
/// Turns the failures of byte streams into the failures of value streams.
#pragma once

#include "values/KELException_Impl.h"

#include <new>

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

/// Runs an operation on a whole value. Every lack of memory becomes the same exception, and
/// failures of the medium are turned as in withMediumErrors.
/// \throws KELOutOfMemoryException "Out of memory!"
template <class Operation> decltype(auto) withStreamErrors(const Operation& operation) {
    try {
        return withMediumErrors(operation);
    } catch (const std::bad_alloc&) {
        throw new KELOutOfMemoryException_Impl("Out of memory!");
    } catch (const JOutOfMemoryException&) {
        throw new KELOutOfMemoryException_Impl("Out of memory!");
    }
}

} // namespace kel
