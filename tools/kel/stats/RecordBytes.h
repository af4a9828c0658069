/// \file
/// Counts the bytes of the records of a binary file.
#pragma once

#include "stats/KindBytes.h"

#include <string_view>

namespace kel::tool {

/// Returns the bytes of the records of each kind, of nulls, names and references, for the binary
/// format alone. All of them together are the size of the file if it consists of sound records,
/// even if it has parts that reading drops.
KindBytes bytesOfRecords(std::string_view content);

/// Puts the bytes of one format in the place of others.
void replaceBytes(KindBytes& kinds, const KindBytes& others, Format format);

} // namespace kel::tool
