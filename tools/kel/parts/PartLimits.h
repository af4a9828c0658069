/// \file
/// The size and the depth of the parts in which documents are converted.
#pragma once

#include <cstddef>

namespace kel::tool {

/// The size of the records that are read or made at a time.
constexpr size_t partSize = 256 * 1024;

/// The size of the text that is read at a time. Text has a few bytes for each value, and its record
/// at least 35.
constexpr size_t textPartSize = 64 * 1024;

/// Containers nested deeper than this are converted as a whole. Each open container costs a stream
/// for every part, about 7 microseconds. Of a deeper container all values are in memory, which
/// takes about six times its binary form, so the time is better spent.
constexpr size_t mostOpen = 1000;

} // namespace kel::tool
