#include "platform/Memory.h"

#include <cstdint>
#include <cstdlib>

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

void deallocate(void* storage) {
    std::free(storage);
}

} // namespace kel::platform
