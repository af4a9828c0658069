/// \file
/// Identity: the identity of a value as the bytes of a record.
#pragma once

#include <array>

namespace kel::tool {

/// The 16 bytes of an identity, as docs/binary-format.md describes them.
using Identity = std::array<unsigned char, 16>;

} // namespace kel::tool
