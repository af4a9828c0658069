/// \file
/// Slab and Region: how the store of small blocks divides memory.
#pragma once

#include "platform/SlabStore.h"

#include <atomic>
#include <cstdint>

namespace kel::platform {

constexpr std::size_t slabSize = std::size_t{64} * 1024;
constexpr std::size_t slabsPerRegion = 32;
constexpr std::size_t regionSize = slabsPerRegion * slabSize;
constexpr std::size_t classCount = largestBlock / blockGranule;

/// Returns the size of the blocks of a class.
constexpr std::size_t sizeOfClass(std::size_t sizeClass) {
    return (sizeClass + 1) * blockGranule;
}

/// A doubly linked list of Ts through their next and previous.
template <class T> struct LinkedList {
    T* first = nullptr;

    void push(T* item) {
        item->previous = nullptr;
        item->next = first;
        if (first != nullptr) {
            first->previous = item;
        }
        first = item;
    }
    void remove(T* item) {
        (item->previous == nullptr ? first : item->previous->next) = item->next;
        if (item->next != nullptr) {
            item->next->previous = item->previous;
        }
    }
};

/// A block that is free.
struct Block {
    Block* next;
};

/// The state of one slab. Those of a region lie together, apart from the blocks: at the beginning
/// of each slab they would all compete for the same few lines of the cache.
struct alignas(64) Slab {
    Block* free; ///< freed blocks, the last one first
    char* fresh; ///< the blocks from here to end were never used
    char* end;
    uint32_t used; ///< blocks that are neither free nor fresh, those of remote included
    uint8_t sizeClass;
    bool isFull;    ///< set aside without a block to give
    bool isCurrent; ///< the one that the heap allocates from
    Slab* next;     ///< in the heap's list of slabs with room, or of empty slabs
    Slab* previous;
    std::atomic<Block*> remote; ///< blocks that other threads freed
    Slab* nextRemote;           ///< in the heap's list of slabs with such blocks

    bool hasBlock() const { return free != nullptr || fresh != end; }

    /// Makes all blocks fresh, of the size of the slab's class. None must be in use.
    void renew();
};

struct Heap;

/// A piece of memory from the system, aligned to its size, so that a block's address leads to it.
/// Its first slab begins with this.
struct Region {
    std::atomic<Heap*> heap;
    Region* next; ///< in the heap's list of regions
    Region* previous;
    uint32_t usedSlabs;
    Slab slabs[slabsPerRegion];

    static Region* of(const void* block) {
        return reinterpret_cast<Region*>(reinterpret_cast<uintptr_t>(block) & ~(regionSize - 1));
    }

    Slab* slabOf(const void* block) {
        const std::size_t offset = reinterpret_cast<uintptr_t>(block) & (regionSize - 1);
        return &slabs[offset / slabSize];
    }

    /// Takes a region from the system, all zero. Huge pages are not requested: they made the first
    /// use of new memory several times slower than small ones.
    /// \return null when there is no memory
    static Region* map();

    /// Returns the region to the system.
    void unmap();
};

} // namespace kel::platform
