#include "platform/Slab.h"

#if !defined(_WIN32)

#include <new>
#include <sys/mman.h>

namespace kel::platform {

namespace {

constexpr std::size_t headSize = (sizeof(Region) + 63) / 64 * 64;
static_assert(headSize < slabSize / 8);

} // namespace

void Slab::renew() {
    Region* region = Region::of(this);
    const auto index = static_cast<std::size_t>(this - region->slabs);
    const std::size_t head = index == 0 ? headSize : 0;
    const std::size_t size = sizeOfClass(sizeClass);
    free = nullptr;
    fresh = reinterpret_cast<char*>(region) + index * slabSize + head;
    end = fresh + (slabSize - head) / size * size;
}

Region* Region::map() {
    // Twice the size contains an aligned piece. The rest is returned at once.
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
    return new (start + before) Region(); // the slabs are zero, as the system made them
}

void Region::unmap() {
    munmap(static_cast<void*>(this), regionSize);
}

} // namespace kel::platform

#endif
