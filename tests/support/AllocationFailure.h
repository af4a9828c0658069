/// \file
/// Allocations that fail on purpose, in operator new and in the library's raw storage alike.
#pragma once

#include <cstddef>
#include <functional>
#include <kel/JException.h>
#include <kel/KELException.h>
#include <new>

namespace kel::test {

/// While alive, the allocation after the first `allowed` ones of this thread fails, and with
/// `forGood` all that follow. One at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t allowed, bool forGood = false);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// True when an allocation was made to fail.
    bool hasFailed() const;
};

/// While alive, this thread cannot allocate more than so many bytes altogether. It turns a walk
/// that never ends into a failure.
class AllocationBudget {
public:
    explicit AllocationBudget(std::size_t bytes);
    AllocationBudget(const AllocationBudget&) = delete;
    AllocationBudget& operator=(const AllocationBudget&) = delete;
    ~AllocationBudget();
};

/// Runs action again and again, with its first, its second, its third allocation failing, until it
/// needs no more; then the same with every allocation from there on failing. An out-of-memory
/// exception is what action is expected to throw; every other one comes through. `afterwards` looks
/// at the damage after each run.
/// \return how many allocations action makes
std::size_t failEachAllocation(
    const std::function<void()>& action, const std::function<void()>& afterwards = [] {});

} // namespace kel::test
