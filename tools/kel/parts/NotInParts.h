/// \file
/// The reasons why a document is not read part by part.
#pragma once

#include "failures/Failure.h"

#include <string>

namespace kel::tool {

/// Thrown when a document cannot be converted part by part.
struct NotInParts {};

/// Thrown when a part cannot be read, although the whole input was sound when it was examined.
struct UnreadablePart {};

/// Returns the failure for a file whose parts cannot be read, although the whole has no mistake.
// not reached: no test changes a file just then
inline Failure changedMeanwhile(const std::string& name) {
    return {Trouble::unreadable, name + ": the file was changed while it was read"};
}

} // namespace kel::tool
