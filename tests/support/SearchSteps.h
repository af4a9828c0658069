/// \file
/// SearchSteps: counts what searches of long lists do.
#pragma once

#include "runtime/PointerBlock.h"

#include <utility>

namespace kel::test {

/// Counts the elements that searches of long lists look at while it is alive. Only one can be alive
/// at a time.
class SearchSteps {
public:
    SearchSteps() { PointerBlock::exchangeStepCounter(&count_); }
    SearchSteps(const SearchSteps&) = delete;
    SearchSteps& operator=(const SearchSteps&) = delete;
    ~SearchSteps() { PointerBlock::exchangeStepCounter(nullptr); }

    /// Returns the number since the last call.
    uint64_t take() { return std::exchange(count_, 0); }

private:
    uint64_t count_ = 0;
};

} // namespace kel::test
