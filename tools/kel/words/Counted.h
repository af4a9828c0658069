/// \file
/// Numbers of things in words.
#pragma once

#include <cstdint>
#include <string>

namespace kel::tool {

/// Returns the number and the noun, with an "s" unless there is one: "3 values".
inline std::string counted(uint64_t count, const char* noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

} // namespace kel::tool
