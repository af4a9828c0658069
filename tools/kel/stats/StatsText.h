/// \file
/// Statistics as a table for people and as JSON for programs.
#pragma once

#include "stats/ValueStats.h"

#include <string>

namespace kel::tool {

/// An input and the numbers about it.
struct FileStats {
    std::string name;
    Format format;
    uint64_t size; ///< of the input in bytes
    Stats stats;
};

/// Returns a table of the numbers.
std::string tableOf(const FileStats& file);

/// Returns the numbers as JSON. \param isIndented whether it has several lines
std::string jsonOf(const FileStats& file, bool isIndented);

} // namespace kel::tool
