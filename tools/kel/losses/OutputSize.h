/// \file
/// The number of bytes that single parts of text and JSON take.
#pragma once

#include "document/Format.h"

#include <cstdint>
#include <kel/KEL.h>

namespace kel::tool {

/// Returns a number of bytes that a scalar does not exceed, and about that many bytes. Null stands
/// for a place without a value.
/// \param format text or JSON
uint64_t sizeOfScalar(const KEL* scalar, Format format);

/// Returns the same for a variable's name with the sign after it.
uint64_t sizeOfName(const char* name, Format format);

/// Returns the number of bytes that the brackets of a container take, and whatever else the format
/// writes for the container itself. For text, this includes line ends.
uint64_t sizeOfContainer(const KEL& container, Format format);

/// Returns the number of bytes around each element of the container, without names.
uint64_t sizeAroundElement(const KEL& container, Format format);

} // namespace kel::tool
