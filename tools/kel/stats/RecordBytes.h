/// \file
/// Counts the bytes of the records of a binary file.
#pragma once

#include "document/InputBytes.h"
#include "stats/KindBytes.h"

namespace kel::tool {

/// Returns the bytes of the records of each kind, of nulls, names and references, for the binary
/// format alone. All of them together are the size of the file if it consists of sound records,
/// even if it has parts that reading drops.
KindBytes bytesOfRecords(const InputBytes& content);

/// Puts the bytes of one format in the place of others.
void replaceBytes(KindBytes& kinds, const KindBytes& others, Format format);

} // namespace kel::tool
