#include "support/AllocationFailure.h"

#include "platform/Memory.h"

#include <cstdint>
#include <cstdlib>

namespace kel::test {

namespace {

/// The allocations that this thread can still make.
struct Limits {
    bool counting = false;
    bool forGood = false;
    bool failed = false;
    std::size_t allowed = 0;
    std::size_t bytes = SIZE_MAX;
};

thread_local Limits limits;

bool mayAllocate(std::size_t size) {
    if (limits.bytes != SIZE_MAX) {
        if (size > limits.bytes) {
            return false;
        }
        limits.bytes -= size;
    }
    if (!limits.counting) {
        return true;
    }
    if (limits.allowed > 0) {
        --limits.allowed;
        return true;
    }
    limits.failed = true;
    limits.counting = limits.forGood;
    return false;
}

} // namespace

FailingAllocation::FailingAllocation(std::size_t allowed, bool forGood) {
    kel::platform::exchangeAllocationGate(mayAllocate);
    limits = {true, forGood, false, allowed, SIZE_MAX};
}

FailingAllocation::~FailingAllocation() {
    kel::platform::exchangeAllocationGate(nullptr);
    limits = {};
}

bool FailingAllocation::hasFailed() const {
    return limits.failed;
}

AllocationBudget::AllocationBudget(std::size_t bytes) {
    kel::platform::exchangeAllocationGate(mayAllocate);
    limits = {false, false, false, 0, bytes};
}

AllocationBudget::~AllocationBudget() {
    kel::platform::exchangeAllocationGate(nullptr);
    limits = {};
}

std::size_t AllocationBudget::left() const {
    return limits.bytes;
}

namespace {

/// Runs action with an allocation that fails. \return true if an allocation failed meanwhile
bool runWithFailure(std::size_t allowed, bool forGood, const std::function<void()>& action) {
    const FailingAllocation failing(allowed, forGood);
    try {
        action();
    } catch (const std::bad_alloc&) {
    } catch (const JOutOfMemoryException&) {
    } catch (KELOutOfMemoryException* failure) {
        failure->release();
    }
    return failing.hasFailed();
}

} // namespace

std::size_t failEachAllocation(const std::function<void()>& action,
                               const std::function<void()>& afterwards) {
    std::size_t count = 0;
    for (const bool forGood : {false, true}) {
        for (count = 0; runWithFailure(count, forGood, action); ++count) {
            afterwards();
        }
        afterwards();
    }
    return count;
}

} // namespace kel::test

// The allocation functions of the whole test program. All forms are replaced, so that the function
// that frees storage always matches the one that allocated it.

namespace {

void* allocateOrNull(std::size_t size) {
    return kel::test::mayAllocate(size) ? std::malloc(size == 0 ? 1 : size) : nullptr;
}

void* allocateOrThrow(std::size_t size) {
    void* storage = allocateOrNull(size);
    if (storage == nullptr) {
        throw std::bad_alloc();
    }
    return storage;
}

} // namespace

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void operator delete(void* storage) noexcept {
    std::free(storage);
}
void operator delete[](void* storage) noexcept {
    std::free(storage);
}
void operator delete(void* storage, std::size_t) noexcept {
    std::free(storage);
}
void operator delete[](void* storage, std::size_t) noexcept {
    std::free(storage);
}
void operator delete(void* storage, const std::nothrow_t&) noexcept {
    std::free(storage);
}
void operator delete[](void* storage, const std::nothrow_t&) noexcept {
    std::free(storage);
}
