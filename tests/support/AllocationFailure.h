/// \file
/// Allocations that fail on purpose, in operator new and in the library's raw storage alike.
#pragma once

#include <cstddef>
#include <functional>
#include <kel/JException.h>
#include <kel/KELException.h>
#include <new>

namespace kel::test {

/// While alive, the allocation after the first `allowed` ones of this thread fails. With `forGood`,
/// all later ones fail too. Only one can be alive at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t allowed, bool forGood = false);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// Returns whether an allocation was made to fail.
    bool hasFailed() const;
};

/// While alive, this thread can allocate at most the given number of bytes in total. A walk that
/// never ends then fails.
class AllocationBudget {
public:
    explicit AllocationBudget(std::size_t bytes);
    AllocationBudget(const AllocationBudget&) = delete;
    AllocationBudget& operator=(const AllocationBudget&) = delete;
    ~AllocationBudget();

    /// Returns the bytes of the budget that are left. Freed bytes are not added back.
    std::size_t left() const;
};

/// Runs action repeatedly. Its first allocation fails in the first run, its second in the next, and
/// so on until action makes no more. Then it does the same, but all later allocations fail too.
/// Action is expected to throw an out-of-memory exception. Every other exception reaches the
/// caller. `afterwards` checks the state after each run.
/// \return the number of allocations that action makes
std::size_t failEachAllocation(
    const std::function<void()>& action, const std::function<void()>& afterwards = [] {});

} // namespace kel::test
