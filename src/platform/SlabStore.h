/// \file
/// Storage for small blocks, which values and their parts are made of.
#pragma once

#include <cstddef>

namespace kel::platform {

/// Small blocks come in sizes that are multiples of this.
constexpr std::size_t blockGranule = 8;

/// The largest size of a small block.
constexpr std::size_t largestBlock = 64 * sizeof(void*);

/// Returns a block of size bytes (1 to largestBlock), not initialized, or null when there is no
/// memory. It is aligned to 8 bytes, and to 16 if size is a multiple of 16, so for every type of
/// that size.
///
/// Blocks of one size lie side by side in slabs of 64 KiB, and are taken in the order of their
/// addresses. So a tree that is made in order lies in memory in order, also in a process that has
/// made and released many others before. Each thread has slabs of its own and needs no lock for
/// them. Any thread may free a block. When a thread ends, its slabs pass to the next thread that
/// makes its first block or frees one of theirs. Regions of 32 empty slabs return to the system,
/// except for a reserve that follows the use of each thread; docs/storage.md has the rule.
void* takeBlock(std::size_t size);

/// Gives back a block from takeBlock, on any thread.
void giveBlock(void* block) noexcept;

/// Returns the number of bytes that this thread's slabs take from the system. For tests.
std::size_t slabBytesOfThread();

} // namespace kel::platform
