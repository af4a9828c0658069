/// \file
/// withOneOutOfMemory: the same exception for every lack of memory.
#pragma once

#include "runtime/Storage.h"

#include <kel/KELException.h>

namespace kel {

/// Runs an operation that makes values. Its parts report a lack of memory in different ways, but
/// the caller always gets the same exception.
/// \throws JOutOfMemoryException "Out of memory!", by value
template <class Operation> auto withOneOutOfMemory(const Operation& operation) {
    try {
        return operation();
    } catch (const JOutOfMemoryException&) {
        throwOutOfMemory();
    } catch (KELOutOfMemoryException* failure) {
        failure->release();
        throwOutOfMemory();
    }
}

} // namespace kel
