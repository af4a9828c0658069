#include "platform/SlabStore.h"

#if !defined(_WIN32)

#include "platform/ThreadLocal.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sys/mman.h>

namespace kel::platform {

namespace {

constexpr std::size_t slabSize = std::size_t{64} * 1024;
constexpr std::size_t slabsPerRegion = 32;
constexpr std::size_t regionSize = slabsPerRegion * slabSize; // a huge page on most machines
constexpr std::size_t classCount = largestBlock / blockGranule;
constexpr std::size_t reservedRegions = 4; // kept although empty

struct Block {
    Block* next;
};

struct Region;

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
};

/// The doubly linked list of slabs through their next and previous.
struct SlabList {
    Slab* first = nullptr;

    void push(Slab* slab) {
        slab->previous = nullptr;
        slab->next = first;
        if (first != nullptr) {
            first->previous = slab;
        }
        first = slab;
    }
    void remove(Slab* slab) {
        (slab->previous == nullptr ? first : slab->previous->next) = slab->next;
        if (slab->next != nullptr) {
            slab->next->previous = slab->previous;
        }
    }
};

/// The slabs of one thread, or those that an ended thread has left.
struct Heap {
    Slab* current[classCount];
    SlabList withRoom[classCount];
    SlabList empty;
    Region* regions = nullptr;
    std::size_t regionCount = 0;
    std::size_t emptyRegions = 0;
    std::atomic<bool> hasRemote{false};
    Slab* remoteSlabs = nullptr;       // guarded by the lock
    std::atomic<bool> isOrphan{false}; // changed under the lock
    Heap* nextOrphan = nullptr;        // guarded by the lock
};

/// A piece of memory from the system, aligned to its size, so that a block's address leads to it.
struct Region {
    std::atomic<Heap*> heap;
    Region* next;
    Region* previous;
    uint32_t usedSlabs;
    Slab slabs[slabsPerRegion];
};

constexpr std::size_t headSize = (sizeof(Region) + 63) / 64 * 64;
static_assert(headSize < slabSize / 8);

Region* regionOf(const void* block) {
    return reinterpret_cast<Region*>(reinterpret_cast<uintptr_t>(block) & ~(regionSize - 1));
}

Slab* slabOf(const void* block) {
    const std::size_t offset = reinterpret_cast<uintptr_t>(block) & (regionSize - 1);
    return &regionOf(block)->slabs[offset / slabSize];
}

constexpr std::size_t sizeOfClass(std::size_t sizeClass) {
    return (sizeClass + 1) * blockGranule;
}

// A thread without a heap has this one, whose slab never has a block to give. Nobody writes to it.
Slab noSlab{};

struct NoHeap : Heap {
    constexpr NoHeap() : Heap() {
        for (Slab*& slab : current) {
            slab = &noSlab;
        }
    }
};

constinit NoHeap noHeap;
KEL_HOT_THREAD_LOCAL Heap* threadHeap = &noHeap;

// What threads share: the heaps of ended threads, and the remote lists of all heaps.
constinit std::mutex lock;
constinit Heap* orphans = nullptr; // with slabs
constinit Heap* spareHeaps =
    nullptr; // without; never given back, since a pointer to one can be late

void* mapRegion() {
    char* start = static_cast<char*>(
        mmap(nullptr, 2 * regionSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (start == MAP_FAILED) {
        return nullptr;
    }
    const std::size_t before = (regionSize - reinterpret_cast<uintptr_t>(start)) & (regionSize - 1);
    if (before > 0) {
        munmap(start, before);
    }
    if (before < regionSize) {
        munmap(start + before + regionSize, regionSize - before);
    }
    return start + before;
}

void linkRegion(Heap& heap, Region* region) {
    region->previous = nullptr;
    region->next = heap.regions;
    if (heap.regions != nullptr) {
        heap.regions->previous = region;
    }
    heap.regions = region;
    ++heap.regionCount;
}

bool addRegion(Heap& heap) {
    void* memory = mapRegion();
    if (memory == nullptr) {
        return false;
    }
#if defined(MADV_HUGEPAGE)
    if (heap.regionCount > 0) { // a small process keeps small pages
        madvise(memory, regionSize, MADV_HUGEPAGE);
    }
#endif
    auto* region = new (memory) Region(); // all zero, as the system made it
    region->heap.store(&heap, std::memory_order_relaxed);
    linkRegion(heap, region);
    ++heap.emptyRegions;
    for (std::size_t i = slabsPerRegion; i-- > 0;) {
        heap.empty.push(&region->slabs[i]);
    }
    return true;
}

void removeRegion(Heap& heap, Region* region) {
    for (Slab& slab : region->slabs) {
        heap.empty.remove(&slab);
    }
    (region->previous == nullptr ? heap.regions : region->previous->next) = region->next;
    if (region->next != nullptr) {
        region->next->previous = region->previous;
    }
    --heap.regionCount;
    --heap.emptyRegions;
    munmap(static_cast<void*>(region), regionSize);
}

/// Makes all blocks of a slab fresh.
void renew(Slab* slab) {
    Region* region = regionOf(slab);
    const auto index = static_cast<std::size_t>(slab - region->slabs);
    char* begin = reinterpret_cast<char*>(region) + index * slabSize + (index == 0 ? headSize : 0);
    const std::size_t room = slabSize - (index == 0 ? headSize : 0);
    const std::size_t size = sizeOfClass(slab->sizeClass);
    slab->free = nullptr;
    slab->fresh = begin;
    slab->end = begin + room / size * size;
}

/// Takes a slab that holds no used block off its size.
void retire(Heap& heap, Slab* slab) {
    slab->free = nullptr;
    slab->fresh = slab->end = nullptr;
    slab->isFull = false;
    heap.empty.push(slab);
    Region* region = regionOf(slab);
    if (--region->usedSlabs == 0 && ++heap.emptyRegions > reservedRegions) {
        removeRegion(heap, region);
    }
}

/// What a free does when its slab was full or is empty now.
void afterFree(Heap& heap, Slab* slab) {
    if (slab->isCurrent) {
        if (slab->used == 0) {
            renew(slab); // in order again
        }
        return;
    }
    if (slab->used == 0) {
        if (!slab->isFull) {
            heap.withRoom[slab->sizeClass].remove(slab);
        }
        retire(heap, slab);
    } else if (slab->isFull) {
        slab->isFull = false;
        heap.withRoom[slab->sizeClass].push(slab);
    }
}

/// Takes back the blocks that other threads freed.
void collectRemote(Heap& heap) {
    Slab* slab = nullptr;
    {
        const std::lock_guard<std::mutex> guard(lock);
        heap.hasRemote.store(false, std::memory_order_relaxed);
        slab = heap.remoteSlabs;
        heap.remoteSlabs = nullptr;
    }
    while (slab != nullptr) {
        Slab* next = slab->nextRemote; // first: a thread that frees now can list the slab again
        Block* block = slab->remote.exchange(nullptr, std::memory_order_acq_rel);
        while (block != nullptr) {
            Block* following = block->next;
            block->next = slab->free;
            slab->free = block;
            --slab->used;
            block = following;
        }
        afterFree(heap, slab);
        slab = next;
    }
}

/// Adds the slabs of an ended thread to a heap. The caller holds the lock.
void adopt(Heap& heap, Heap& orphan) {
    Heap** link = &orphans;
    while (*link != &orphan) {
        link = &(*link)->nextOrphan;
    }
    *link = orphan.nextOrphan;
    orphan.isOrphan.store(false, std::memory_order_relaxed);
    while (Region* region = orphan.regions) {
        orphan.regions = region->next;
        region->heap.store(&heap, std::memory_order_relaxed);
        linkRegion(heap, region);
    }
    heap.emptyRegions += orphan.emptyRegions;
    for (std::size_t i = 0; i < classCount; ++i) {
        while (Slab* slab = orphan.withRoom[i].first) {
            orphan.withRoom[i].remove(slab);
            heap.withRoom[i].push(slab);
        }
    }
    while (Slab* slab = orphan.empty.first) {
        orphan.empty.remove(slab);
        heap.empty.push(slab);
    }
    while (Slab* slab = orphan.remoteSlabs) {
        orphan.remoteSlabs = slab->nextRemote;
        slab->nextRemote = heap.remoteSlabs;
        heap.remoteSlabs = slab;
        heap.hasRemote.store(true, std::memory_order_relaxed);
    }
    orphan.hasRemote.store(false, std::memory_order_relaxed);
    orphan.regionCount = orphan.emptyRegions = 0;
    orphan.nextOrphan = spareHeaps;
    spareHeaps = &orphan;
}

/// Leaves the heap of a thread that ends. \param heap the thread's, as the key's value
void leaveHeap(void* heap) {
    auto& mine = *static_cast<Heap*>(heap);
    threadHeap = &noHeap;
    collectRemote(mine);
    for (std::size_t i = 0; i < classCount; ++i) {
        Slab* slab = mine.current[i];
        mine.current[i] = &noSlab;
        if (slab == &noSlab) {
            continue;
        }
        slab->isCurrent = false;
        if (slab->used == 0) {
            slab->isFull = true; // it is in no list
            retire(mine, slab);
        } else if (slab->free == nullptr && slab->fresh == slab->end) {
            slab->isFull = true;
        } else {
            mine.withRoom[i].push(slab);
        }
    }
    for (Region* region = mine.regions; region != nullptr;) {
        Region* next = region->next;
        if (region->usedSlabs == 0) {
            removeRegion(mine, region);
        }
        region = next;
    }
    const std::lock_guard<std::mutex> guard(lock);
    Heap*& list = mine.regions == nullptr && mine.remoteSlabs == nullptr ? spareHeaps : orphans;
    mine.isOrphan.store(&list == &orphans, std::memory_order_relaxed);
    mine.nextOrphan = list;
    list = &mine;
}

pthread_key_t endKey;
constinit std::atomic<bool> hasEndKey{false};

/// Makes the key whose destructor ends a thread's heap. Unlike the destructors of thread-local
/// variables it also works for a thread that makes values while it ends.
struct EndKey {
    EndKey() { hasEndKey = pthread_key_create(&endKey, leaveHeap) == 0; }
    EndKey(const EndKey&) = delete;
    EndKey& operator=(const EndKey&) = delete;
    ~EndKey() {
        if (hasEndKey.exchange(false)) {
            pthread_key_delete(endKey);
        }
    }
};
const EndKey endKeyOfLibrary;

// A child of a fork has one thread, and the lock is free in it.
[[maybe_unused]] const int forkHandlers =
    pthread_atfork([] { lock.lock(); }, [] { lock.unlock(); }, [] { lock.unlock(); });

/// Gives this thread a heap. \return null when there is no memory
Heap* makeHeap() {
    Heap* made = nullptr;
    {
        const std::lock_guard<std::mutex> guard(lock);
        if (spareHeaps != nullptr) {
            made = spareHeaps;
            spareHeaps = made->nextOrphan;
        }
    }
    if (made == nullptr) {
        void* memory = std::malloc(sizeof(Heap));
        if (memory == nullptr) {
            return nullptr;
        }
        made = new (memory) Heap();
    }
    std::fill(std::begin(made->current), std::end(made->current), &noSlab);
    const std::lock_guard<std::mutex> guard(lock);
    if (orphans != nullptr) {
        adopt(*made, *orphans);
    }
    threadHeap = made;
    if (hasEndKey) { // else the slabs stay until the process ends
        pthread_setspecific(endKey, made);
    }
    return made;
}

/// Allocates when the current slab of the class is used up.
void* takeFromNextSlab(std::size_t sizeClass) {
    Heap* heap = threadHeap;
    if (heap == &noHeap) {
        heap = makeHeap();
        if (heap == nullptr) {
            return nullptr;
        }
    }
    if (heap->hasRemote.load(std::memory_order_relaxed)) {
        collectRemote(*heap);
    }
    Slab* before = heap->current[sizeClass];
    Slab* slab = before;
    if (slab->free == nullptr && slab->fresh == slab->end) {
        slab = heap->withRoom[sizeClass].first;
        if (slab != nullptr) {
            heap->withRoom[sizeClass].remove(slab);
        } else {
            if (heap->empty.first == nullptr && !addRegion(*heap)) {
                return nullptr;
            }
            slab = heap->empty.first;
            heap->empty.remove(slab);
            heap->emptyRegions -= regionOf(slab)->usedSlabs++ == 0 ? 1 : 0;
            slab->sizeClass = static_cast<uint8_t>(sizeClass);
            slab->used = 0;
            renew(slab);
        }
        if (before != &noSlab) {
            before->isCurrent = false;
            before->isFull = true;
        }
        slab->isCurrent = true;
        heap->current[sizeClass] = slab;
    }
    return takeBlock(sizeOfClass(sizeClass));
}

/// Frees a block of another thread's slab, or of an ended thread's.
void giveRemote(Region* region, void* block) {
    Heap* owner = region->heap.load(std::memory_order_relaxed);
    if (owner->isOrphan.load(std::memory_order_relaxed)) {
        if (threadHeap == &noHeap) {
            makeHeap();
        }
        Heap* mine = threadHeap;
        bool isMine = false;
        if (mine != &noHeap) {
            const std::lock_guard<std::mutex> guard(lock);
            owner = region->heap.load(std::memory_order_relaxed);
            if (owner != mine && owner->isOrphan.load(std::memory_order_relaxed)) {
                adopt(*mine, *owner);
                owner = mine;
            }
            isMine = owner == mine;
        }
        if (isMine) {
            giveBlock(block);
            return;
        }
    }
    Slab* slab = slabOf(block);
    auto* freed = static_cast<Block*>(block);
    Block* first = slab->remote.load(std::memory_order_relaxed);
    do {
        freed->next = first;
    } while (!slab->remote.compare_exchange_weak(first, freed, std::memory_order_acq_rel,
                                                 std::memory_order_relaxed));
    if (first == nullptr) {
        // The slab cannot vanish before it is listed: its owner counts the block as used until
        // then.
        const std::lock_guard<std::mutex> guard(lock);
        owner = region->heap.load(std::memory_order_relaxed);
        slab->nextRemote = owner->remoteSlabs;
        owner->remoteSlabs = slab;
        owner->hasRemote.store(true, std::memory_order_relaxed);
    }
}

} // namespace

void* takeBlock(std::size_t size) {
    const std::size_t sizeClass = (size - 1) / blockGranule;
    Slab* slab = threadHeap->current[sizeClass];
    if (Block* block = slab->free) {
        slab->free = block->next;
        ++slab->used;
        return block;
    }
    if (slab->fresh != slab->end) {
        void* block = slab->fresh;
        slab->fresh += sizeOfClass(sizeClass);
        ++slab->used;
        return block;
    }
    return takeFromNextSlab(sizeClass);
}

void giveBlock(void* block) noexcept {
    Region* region = regionOf(block);
    Heap* heap = threadHeap;
    if (region->heap.load(std::memory_order_relaxed) != heap) {
        giveRemote(region, block);
        return;
    }
    Slab* slab = slabOf(block);
    auto* freed = static_cast<Block*>(block);
    freed->next = slab->free;
    slab->free = freed;
    if (--slab->used == 0 || slab->isFull) {
        afterFree(*heap, slab);
    }
}

std::size_t slabBytesOfThread() {
    return threadHeap->regionCount * regionSize;
}

} // namespace kel::platform

#endif
