/// \file
/// Raw storage, with a gate by which tests can make each allocation fail.
#pragma once

#include <cstddef>

namespace kel::platform {

/// Called before every allocation of raw storage; if it returns false, that allocation fails.
using AllocationGate = bool (*)(std::size_t size);

/// Installs a gate (null for none) and returns the previous one. For tests; not thread-safe.
AllocationGate exchangeAllocationGate(AllocationGate gate);

/// Allocates size bytes (at least one), uninitialised. Returns null when there is no memory.
void* allocate(std::size_t size);

/// Allocates count * size bytes (at least one), all zero. Returns null when there is no memory.
void* allocateZeroed(std::size_t count, std::size_t size);

/// Frees storage from allocate or allocateZeroed; does nothing for null.
void deallocate(void* storage);

} // namespace kel::platform
