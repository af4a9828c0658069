/// \file
/// The commands of the tool.
#pragma once

#include "Options.h"
#include "system/Console.h"

namespace kel::tool {

/// Carries out the command that the options describe.
/// \return the exit status if the work was completed: 0, or for check the status of the worst file
/// \throws Failure for everything that stops it
int run(const Options& options, Console& console);

/// Writes text to stdout. \throws Failure unwritten
void print(const std::string& text);

} // namespace kel::tool
