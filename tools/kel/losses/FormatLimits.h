/// \file
/// The values that each format cannot carry.
#pragma once

#include "document/Format.h"

#include <kel/KEL.h>

namespace kel::tool {

/// Returns why the format cannot carry the double, as a literal, or null if it can.
const char* obstacleOfDouble(double value, Format format);

/// Returns why the format cannot carry the text of a String, as a literal, or null if it can.
const char* obstacleOfText(const char* text, Format format);

/// Returns why the format cannot carry the value, as a literal, or null if it can. For a container,
/// only the container itself is examined, not the values in it.
const char* obstacleOf(const KEL& value, Format format);

/// Returns why the format cannot carry the name of a variable, as a literal, or null if it can.
const char* obstacleOfName(const char* name, Format format);

/// Returns why the format cannot carry null as a root value, as a literal, or null if it can.
const char* obstacleOfNullRoot(Format format);

} // namespace kel::tool
