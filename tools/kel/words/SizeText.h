/// \file
/// Sizes as users write them: "512M".
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kel::tool {

/// Returns the number of bytes that the text spells: digits and possibly one of the letters K, M, G
/// and T in either case, for powers of 1024. Returns nothing for any other text, for zero, and for
/// a number that 64 bits cannot hold.
std::optional<uint64_t> sizeOfText(std::string_view text);

} // namespace kel::tool
