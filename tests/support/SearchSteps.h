/// \file
/// SearchSteps: counts what searches of long lists and removals from them do.
#pragma once

#include "runtime/PointerBlock.h"

#include <utility>

namespace kel::test {

/// Counts the elements that searches of long lists look at, and those that removals move, while it
/// is alive. Only one can be alive at a time.
class SearchSteps {
public:
    SearchSteps() { PointerBlock::exchangeStepCounter(&count_); }
    SearchSteps(const SearchSteps&) = delete;
    SearchSteps& operator=(const SearchSteps&) = delete;
    ~SearchSteps() { PointerBlock::exchangeStepCounter(nullptr); }

    /// Returns the number of elements that searches looked at since the last call.
    uint64_t take() { return std::exchange(count_.searched, 0); }

    /// Returns the number of elements that removals moved since the last call.
    uint64_t takeMoves() { return std::exchange(count_.moved, 0); }

private:
    PointerBlock::Steps count_;
};

} // namespace kel::test
