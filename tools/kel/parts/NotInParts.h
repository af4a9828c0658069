/// \file
/// NotInParts: the reason to convert a document as a whole.
#pragma once

namespace kel::tool {

/// Thrown when a document cannot be converted part by part.
struct NotInParts {};

} // namespace kel::tool
