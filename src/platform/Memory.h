/// \file
/// Raw storage, with a gate that tests close to see every allocation fail once.
#pragma once

#include <cstddef>

namespace kel::platform {

/// Asked before every allocation of raw storage; false makes that allocation fail.
using AllocationGate = bool (*)(std::size_t size);

/// Installs a gate (null: none) and returns the one before. For tests; not thread-safe.
AllocationGate exchangeAllocationGate(AllocationGate gate);

/// size bytes (at least one), not initialised; null when there is no memory.
void* allocate(std::size_t size);

/// count * size bytes (at least one), all zero; null when there is no memory.
void* allocateZeroed(std::size_t count, std::size_t size);

/// Frees storage from allocate or allocateZeroed; null is ignored.
void deallocate(void* storage);

} // namespace kel::platform
