#include "platform/Memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace kel::platform {

namespace {

AllocationGate installedGate = nullptr;

bool mayAllocate(std::size_t size) {
    return installedGate == nullptr || installedGate(size);
}

} // namespace

AllocationGate exchangeAllocationGate(AllocationGate gate) {
    AllocationGate before = installedGate;
    installedGate = gate;
    return before;
}

void* allocate(std::size_t size) {
    return mayAllocate(size) ? std::malloc(size == 0 ? 1 : size) : nullptr;
}

void* allocateZeroed(std::size_t count, std::size_t size) {
    if (count == 0 || size == 0) {
        count = size = 1;
    }
    const bool fits = count <= SIZE_MAX / size;
    return fits && mayAllocate(count * size) ? std::calloc(count, size) : nullptr;
}

void* reallocate(void* storage, std::size_t size) {
    return mayAllocate(size) ? std::realloc(storage, size == 0 ? 1 : size) : nullptr;
}

void deallocate(void* storage) {
    std::free(storage);
}

void* allocateBlock(std::size_t size) {
    if (!mayAllocate(size)) {
        return nullptr;
    }
#if defined(KEL_SLAB_STORE)
    return takeBlock(size);
#else
    return std::malloc(size);
#endif
}

void deallocateBlock(void* storage) noexcept {
#if defined(KEL_SLAB_STORE)
    if (storage != nullptr) {
        giveBlock(storage);
    }
#else
    std::free(storage);
#endif
}

void* allocateSized(std::size_t size) {
    return size - 1 < largestBlock ? allocateBlock(size) : allocate(size);
}

void* reallocateSized(void* storage, std::size_t size, std::size_t newSize) {
    if (size > largestBlock && newSize > largestBlock) {
        return reallocate(storage, newSize); // which can move pages instead of bytes
    }
    void* moved = allocateSized(newSize);
    if (moved != nullptr && storage != nullptr) {
        std::memcpy(moved, storage, std::min(size, newSize));
        deallocateSized(storage, size);
    }
    return moved;
}

void deallocateSized(void* storage, std::size_t size) noexcept {
    size - 1 < largestBlock ? deallocateBlock(storage) : deallocate(storage);
}

} // namespace kel::platform
