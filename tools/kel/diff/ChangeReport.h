/// \file
/// Makes a document of changes.
#pragma once

#include "diff/Changes.h"
#include "document/Document.h"

namespace kel::tool {

/// Returns a document of one struct with the array "changes". Each change is a struct with the kind
/// of change and the paths. It shares the values of both documents, so it must not outlive them.
Document reportOf(const Changes& changes);

} // namespace kel::tool
