/// \file
/// What the tool does.
#pragma once

#include "Console.h"
#include "Options.h"

namespace kel::tool {

/// Carries out what the options ask for.
/// \return the exit status where the work came to an end: 0, or for check that of the worst file
/// \throws Failure for everything that stops it
int run(const Options& options, Console& console);

/// Writes text to stdout. \throws Failure unwritten
void print(const std::string& text);

} // namespace kel::tool
