/// \file
/// What stands for the store of small blocks, in the copy that scripts/mutate.sh builds.
#pragma once

#include <cstddef>
#include <cstdlib>

/// Whether every block comes from malloc, where a checker of leaks sees it.
extern bool kel_uses_malloc;

/// Stands for the call that takes a block from the store.
inline void* kel_take(void* (*take)(std::size_t), std::size_t size) {
    return kel_uses_malloc ? std::malloc(size) : take(size);
}

/// Stands for the call that gives a block back to the store.
inline void kel_give(void (*give)(void*), void* block) {
    kel_uses_malloc ? std::free(block) : give(block);
}
