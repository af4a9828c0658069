/// \file
/// Slab and Region: how the store of small blocks divides memory.
#pragma once

#include "platform/SlabStore.h"

#include <atomic>
#include <bit>
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

/// A block that another thread has freed.
struct Block {
    Block* next;
};

/// The state of one slab. Those of a region lie together, apart from the blocks: at the beginning
/// of each slab they would all compete for the same few lines of the cache.
///
/// The slab itself begins with its map: one bit for each block, set if the block is free. Blocks
/// are numbered from the beginning of the slab. The first numbers are the map's own and never free.
/// A slab gives its free blocks in the order of their addresses, in whatever order they were freed.
struct alignas(64) Slab {
    using Word = uint64_t;
    static constexpr std::size_t wordBits = 64;
    static constexpr std::size_t mostWords = slabSize / blockGranule / wordBits;

    Word* word = nullptr;   ///< the word of the map that blocks are taken from
    uint32_t wordCount = 0; ///< of the map
    uint32_t capacity = 0;  ///< the number of blocks
    uint32_t used = 0;      ///< blocks that are not free, those of remote included
    uint32_t inverse = 0;   ///< 2^32 divided by the size of a block, at most 1 too large
    uint8_t sizeClass = 0;
    bool isFull = false;    ///< set aside without a block to give
    bool isCurrent = false; ///< the one that the heap allocates from
    Slab* next = nullptr;   ///< in the heap's list of slabs with room, or of empty slabs
    Slab* previous = nullptr;
    std::atomic<Block*> remote{nullptr}; ///< blocks that other threads freed
    Slab* nextRemote = nullptr;          ///< in the heap's list of slabs with such blocks

    /// Prepares a slab without used blocks for a class.
    void begin(std::size_t newClass);

    bool hasBlock() const { return used < capacity; }
    bool hasBlockInWord() const { return *word != 0; }

    /// Takes a block of the current word, which must have one. \param size that of its class
    void* take(std::size_t size) {
        const Word free = *word;
        *word = free & (free - 1);
        ++used;
        const auto bit = static_cast<std::size_t>(std::countr_zero(free));
        const auto number = static_cast<std::size_t>(word - mapOf(word)) * wordBits + bit;
        return reinterpret_cast<char*>(mapOf(word)) + number * size;
    }

    /// Marks a used block as free.
    void give(const void* block) {
        const auto offset = reinterpret_cast<uintptr_t>(block) % slabSize;
        const auto number = static_cast<std::size_t>(offset * uint64_t{inverse} >> 32);
        mapOf(block)[number / wordBits] |= Word{1} << number % wordBits;
        --used;
    }

    /// Moves to the next word that has a block. The slab must have one.
    void findWord();

    /// Moves to the first word.
    void rewind();

private:
    /// Returns the map of the slab that an address belongs to, which is the beginning of the slab.
    static Word* mapOf(const void* address) {
        return reinterpret_cast<Word*>(reinterpret_cast<uintptr_t>(address) & ~(slabSize - 1));
    }
};

struct Heap;

/// A piece of memory from the system, aligned to its size, so that a block's address leads to it.
/// Its first slab begins with this.
struct Region {
    Slab::Word firstMap[Slab::mostWords]; ///< the map of the first slab
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
