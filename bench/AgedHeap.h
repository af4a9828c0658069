/// \file
/// A heap as a program has it after some hours: its free storage is scattered.
#pragma once

#include "KelTree.h"

#include <nlohmann/json.hpp>
#include <vector>

namespace bench {

/// Ages the heap for as long as it lives. A hundred rounds make documents of many sizes in both
/// libraries, by building, reading and copying, and release the records of earlier ones in shuffled
/// order. Some records are never released, so that the storage around them is not joined up again.
/// The rounds are the same in every run.
class AgedHeap {
public:
    AgedHeap();

private:
    std::vector<Tree> trees_;
    std::vector<nlohmann::json> jsons_;
};

} // namespace bench
