/// \file
/// Raw storage, with a gate by which tests can make each allocation fail.
#pragma once

#include "platform/SlabStore.h"

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

/// Changes the size of storage from allocate to size bytes (at least one), which can move it, and
/// keeps its bytes as far as they fit. Does the same as allocate for null. Returns null when there
/// is no memory; storage then remains as it was.
void* reallocate(void* storage, std::size_t size);

/// Frees storage from allocate, reallocate or allocateZeroed; does nothing for null.
void deallocate(void* storage);

/// Returns size bytes (at most largestBlock), not initialized, or null when there is no memory.
void* allocateBlock(std::size_t size);

/// Frees storage from allocateBlock. Null is ignored.
void deallocateBlock(void* storage) noexcept;

/// Returns size bytes (at least one), not initialized, or null when there is no memory. The
/// caller must know the size when it frees them. This is faster than allocate for small sizes.
void* allocateSized(std::size_t size);

/// Changes storage of size bytes from allocateSized to newSize bytes (at least one), which can move
/// it, and keeps its bytes as far as they fit. Does the same as allocateSized for null, whose size
/// is 0. Returns null when there is no memory; storage then remains as it was.
void* reallocateSized(void* storage, std::size_t size, std::size_t newSize);

/// Frees the size bytes from allocateSized. Null is ignored.
void deallocateSized(void* storage, std::size_t size) noexcept;

} // namespace kel::platform
