/// \file
/// Bounds the size of a binary file before it is written.
#pragma once

#include "document/Document.h"

#include <cstddef>

namespace kel::tool {

/// Returns a number of bytes that the records of the document's values do not exceed, and that is
/// at most about twice as large as their size.
/// \throws std::bad_alloc if no memory has so many bytes
size_t mostRecordBytes(const Document& document);

} // namespace kel::tool
