/// \file
/// orNullWithoutMemory: every exported factory returns null when there is no memory.
#pragma once

#include <kel/JException.h>
#include <new>

namespace kel {

/// Returns the operation's result, or null when it runs out of memory.
template <class Operation> auto orNullWithoutMemory(const Operation& operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
    } catch (const JOutOfMemoryException&) {
    }
    return decltype(operation())();
}

} // namespace kel
