/// \file
/// The commands of the tool.
#pragma once

#include "Options.h"
#include "system/Console.h"

namespace kel::tool {

/// Carries out what the options ask for.
/// \return the exit status where the work came to an end: 0, or for check that of the worst file
/// \throws Failure for everything that stops it
int run(const Options& options, Console& console);

/// Writes text to stdout. \throws Failure unwritten
void print(const std::string& text);

} // namespace kel::tool
