/// \file
/// Finds the lines and columns of findings.
#pragma once

#include "findings/Finding.h"

#include <string_view>

namespace kel::tool {

/// Sorts the findings by their offsets and gives each its line and column. Findings without an
/// offset come first, in the order that they have. A line ends at LF. Columns count characters of
/// UTF-8, and every byte that is not UTF-8 as one character. A finding that repeats something also
/// gets the line of that in its message. Passes over the content once.
void findLines(Findings& findings, std::string_view content);

} // namespace kel::tool
