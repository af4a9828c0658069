/// \file
/// Shows the lines that findings are about.
#pragma once

#include "document/Input.h"
#include "findings/Finding.h"

namespace kel::tool {

/// Gives the first findings that have a line their excerpt: the line with a mark below the name or
/// value at their offset. A file can have a million findings, and a hundred lines are enough to see
/// what is wrong with it.
/// \param content the text or JSON that the findings are about
void addExcerpts(Findings& findings, const Content& content);

} // namespace kel::tool
