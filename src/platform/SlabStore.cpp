#include "platform/SlabStore.h"

#if !defined(_WIN32)

#include "platform/Inline.h"
#include "platform/Memory.h"
#include "platform/RegionReserve.h"
#include "platform/Slab.h"
#include "platform/ThreadLocal.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <new>
#include <pthread.h>

namespace kel::platform {

/// The slabs of one thread, or those that an ended thread has left.
struct Heap {
    Slab* current[classCount];
    LinkedList<Slab> withRoom[classCount];
    LinkedList<Slab> empty;
    LinkedList<Region> regions;
    std::size_t regionCount = 0;
    std::size_t emptyRegions = 0;
    RegionReserve reserve;
    std::atomic<bool> hasRemote{false};
    Slab* remoteSlabs = nullptr;       // guarded by the lock
    std::atomic<bool> isOrphan{false}; // changed under the lock
    Heap* nextUnowned = nullptr;       // guarded by the lock

    std::size_t usedRegions() const { return regionCount - emptyRegions; }
};

namespace {

// A thread without a heap has this one, whose slab never has a block to give. Nobody writes to it.
constinit Slab::Word noFreeBlock = 0;
constinit Slab noSlab{&noFreeBlock};

// not reached: the compiler runs the constructor
struct NoHeap : Heap {
    constexpr NoHeap() noexcept : Heap() {
        for (Slab*& slab : current) {
            slab = &noSlab;
        }
    }
};

constinit NoHeap noHeap;
KEL_HOT_THREAD_LOCAL Heap* threadHeap = &noHeap;

/// A lock that a thread holds while it forks, so that the data under the lock is complete in the
/// child. Other handlers of the fork run meanwhile on the same thread; the lock lets them pass.
class ForkLock {
public:
    void lock() {
        if (!isForking_) {
            mutex_.lock();
        }
    }
    void unlock() {
        if (!isForking_) {
            mutex_.unlock();
        }
    }
    void beginFork() {
        mutex_.lock();
        isForking_ = true;
    }
    void endFork() {
        isForking_ = false;
        mutex_.unlock();
    }

private:
    static inline thread_local bool isForking_ = false;
    std::mutex mutex_;
};

// The lock guards the shared data: the heaps of ended threads and the remote lists of all heaps.
constinit ForkLock lock;
constinit Heap* orphans = nullptr; // with slabs

// These have no slabs. They are never freed, because another thread can still hold a pointer to
// one.
constinit Heap* spareHeaps = nullptr;

bool addRegion(Heap& heap) {
    Region* region = Region::map();
    if (region == nullptr) {
        return false;
    }
    region->heap.store(&heap, std::memory_order_relaxed);
    heap.regions.push(region);
    ++heap.regionCount;
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
    heap.regions.remove(region);
    --heap.regionCount;
    --heap.emptyRegions;
    region->unmap();
}

/// Removes empty regions until no more than this many are left.
void removeEmptyRegions(Heap& heap, std::size_t left) {
    for (Region* region = heap.regions.first; heap.emptyRegions > left;) {
        Region* next = region->next;
        if (region->usedSlabs == 0) {
            removeRegion(heap, region);
        }
        region = next;
    }
}

/// Moves a slab without used blocks to the empty ones, which can serve any size.
void retire(Heap& heap, Slab* slab) {
    slab->isFull = false;
    heap.empty.push(slab);
    Region* region = Region::of(slab);
    if (--region->usedSlabs == 0 && ++heap.emptyRegions > heap.reserve.size()) {
        removeRegion(heap, region);
    }
    if (heap.reserve.slabEmptied(heap.usedRegions())) {
        removeEmptyRegions(heap, heap.reserve.size());
    }
}

/// Moves a slab that was full or is empty now to its right list, after one of its blocks was freed.
KEL_NEVER_INLINE void afterFree(Heap& heap, Slab* slab) {
    if (slab->isCurrent) {
        if (slab->used == 0) {
            slab->rewind();
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
        const std::lock_guard<ForkLock> guard(lock);
        heap.hasRemote.store(false, std::memory_order_relaxed);
        slab = heap.remoteSlabs;
        heap.remoteSlabs = nullptr;
    }
    while (slab != nullptr) {
        Slab* next = slab->nextRemote; // first: a thread that frees now can list the slab again
        Block* block = slab->remote.exchange(nullptr, std::memory_order_acq_rel);
        while (block != nullptr) {
            Block* following = block->next;
            slab->give(block);
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
        link = &(*link)->nextUnowned;
    }
    *link = orphan.nextUnowned;
    orphan.isOrphan.store(false, std::memory_order_relaxed);
    while (Region* region = orphan.regions.first) {
        orphan.regions.remove(region);
        // A thread that frees a block here can reach the heap, which may be new, without the lock.
        region->heap.store(&heap, std::memory_order_release);
        heap.regions.push(region);
    }
    heap.regionCount += orphan.regionCount;
    heap.emptyRegions += orphan.emptyRegions;
    heap.reserve.grown(heap.usedRegions());
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
    orphan.nextUnowned = spareHeaps;
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
            retire(mine, slab);
        } else if (slab->hasBlock()) {
            mine.withRoom[i].push(slab);
        } else {
            slab->isFull = true;
        }
    }
    removeEmptyRegions(mine, 0);
    mine.reserve = {};
    const std::lock_guard<ForkLock> guard(lock);
    Heap*& list = mine.regions.first == nullptr ? spareHeaps : orphans;
    mine.isOrphan.store(&list == &orphans, std::memory_order_relaxed);
    mine.nextUnowned = list;
    list = &mine;
}

pthread_key_t endKey;
constinit std::atomic<bool> hasEndKey{false};

/// Makes the key whose destructor ends a thread's heap. Unlike the destructors of thread-local
/// variables it also works for a thread that makes values while it ends.
struct EndKey {
    EndKey() noexcept { hasEndKey = pthread_key_create(&endKey, leaveHeap) == 0; }
    EndKey(const EndKey&) = delete;
    EndKey& operator=(const EndKey&) = delete;
    // not reached: it runs after the counts of the process are written
    ~EndKey() {
        if (hasEndKey.exchange(false)) {
            pthread_key_delete(endKey);
        }
    }
};
const EndKey endKeyOfLibrary;

// NOLINTNEXTLINE(cert-err58-cpp): C functions, which throw nothing
[[maybe_unused]] const int forkHandlers =
    pthread_atfork([] { lock.beginFork(); }, [] { lock.endFork(); }, [] { lock.endFork(); });

/// Gives this thread a heap. \return null when there is no memory
Heap* makeHeap() {
    Heap* made = nullptr;
    {
        const std::lock_guard<ForkLock> guard(lock);
        if (spareHeaps != nullptr) {
            made = spareHeaps;
            spareHeaps = made->nextUnowned;
        }
    }
    if (made == nullptr) {
        void* memory = allocate(sizeof(Heap));
        if (memory == nullptr) {
            return nullptr;
        }
        made = new (memory) Heap();
    }
    std::fill(std::begin(made->current), std::end(made->current), &noSlab);
    const std::lock_guard<ForkLock> guard(lock);
    if (orphans != nullptr) {
        adopt(*made, *orphans);
    }
    threadHeap = made;
    // Without the key, or room for its value, the slabs remain until the process ends.
    if (hasEndKey) { // not reached: false only while the process ends
        pthread_setspecific(endKey, made);
    }
    return made;
}

/// Allocates when the current word of the current slab of the class is used up.
KEL_NEVER_INLINE void* takeFromNextWord(std::size_t sizeClass) {
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
    Slab*& slab = heap->current[sizeClass];
    if (!slab->hasBlock()) {
        Slab* next = heap->withRoom[sizeClass].first;
        if (next != nullptr) {
            heap->withRoom[sizeClass].remove(next);
            next->rewind();
        } else {
            if (heap->empty.first == nullptr && !addRegion(*heap)) {
                return nullptr;
            }
            next = heap->empty.first;
            heap->empty.remove(next);
            if (Region::of(next)->usedSlabs++ == 0) {
                --heap->emptyRegions;
                heap->reserve.grown(heap->usedRegions());
            }
            next->begin(sizeClass);
        }
        if (slab != &noSlab) {
            slab->isCurrent = false;
            slab->isFull = true;
        }
        slab = next;
        slab->isCurrent = true;
    }
    if (!slab->hasBlockInWord()) {
        slab->findWord();
    }
    return slab->take(sizeOfClass(sizeClass));
}

/// Frees a block of another thread's slab, or of an ended thread's.
// NOLINTNEXTLINE(misc-no-recursion): the block belongs to this thread in the inner giveBlock
KEL_NEVER_INLINE void giveRemote(Region* region, void* block) {
    Heap* owner = region->heap.load(std::memory_order_acquire);
    if (owner->isOrphan.load(std::memory_order_relaxed)) {
        if (threadHeap == &noHeap) {
            makeHeap();
        }
        Heap* mine = threadHeap;
        bool isMine = false;
        if (mine != &noHeap) {
            const std::lock_guard<ForkLock> guard(lock);
            owner = region->heap.load(std::memory_order_relaxed);
            // reached by chance: another thread can have taken the slabs over meanwhile
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
    Slab* slab = region->slabOf(block);
    auto* freed = static_cast<Block*>(block);
    Block* first = slab->remote.load(std::memory_order_relaxed);
    do {
        freed->next = first;
        // reached by chance: other threads free blocks of the slab at the same moment
    } while (!slab->remote.compare_exchange_weak(first, freed, std::memory_order_acq_rel,
                                                 std::memory_order_relaxed));
    if (first == nullptr) {
        // The slab cannot vanish before it is listed: its owner counts the block as used until
        // then.
        const std::lock_guard<ForkLock> guard(lock);
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
    return slab->hasBlockInWord() ? slab->take(sizeOfClass(sizeClass))
                                  : takeFromNextWord(sizeClass);
}

void giveBlock(void* block) noexcept { // NOLINT(misc-no-recursion): see giveRemote
    Region* region = Region::of(block);
    Heap* heap = threadHeap;
    if (region->heap.load(std::memory_order_relaxed) != heap) {
        giveRemote(region, block);
        return;
    }
    Slab* slab = region->slabOf(block);
    slab->give(block);
    if (slab->used == 0 || slab->isFull) {
        afterFree(*heap, slab);
    }
}

std::size_t slabBytesOfThread() {
    return threadHeap->regionCount * regionSize;
}

} // namespace kel::platform

#endif
