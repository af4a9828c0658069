/// \file
/// Reports failures of every origin: the tool's own, the library's, and those of the C++ library.
#pragma once

#include "failures/Failure.h"
#include "system/Console.h"

namespace kel::tool {

/// Prints a message about the exception that is being handled. Call it in a handler. If memory ran
/// out, nothing is allocated, and the message names the file that the tool works on.
/// \return the trouble, which decides the exit status
Trouble reportFailure(Console& console) noexcept;

} // namespace kel::tool
