/// \file
/// Base64, the form of memory blocks in JSON.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Returns the bytes in base64 (alphabet with "+" and "/", padded with "=").
std::string toBase64(const std::vector<uint8_t>& bytes);

/// Returns the bytes of a text that toBase64 could have made, or nothing for any other text. So
/// decoding and encoding again always gives the same text.
std::optional<std::vector<uint8_t>> fromBase64(std::string_view text);

} // namespace kel::tool
