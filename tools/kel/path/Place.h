/// \file
/// Place: where a path leads in a document.
#pragma once

#include "Document.h"
#include "path/Path.h"

namespace kel::tool {

/// A place in a document, where a value can stand. It borrows from the document.
struct Place {
    size_t root;    ///< the number of the root value, from 0
    KEL* container; ///< the value around the place; null for a root value
    Step step;      ///< the step from the container; nothing for a root value
    int32_t index;  ///< the number of the element or pair in the container, or 0
    bool isThere;   ///< whether the container has such a variable or element, even a null one
    KEL* value;     ///< the value at the place, or null
};

/// Returns the place that the path leads to. Its last step can be missing in the document; a caller
/// that needs a value must look at isThere.
/// \throws Failure refused, "PATH: what is missing", for a step that leads nowhere, with similar
///         names; for a path without the number of a root value if there are several
Place findPlace(const Document& document, const Path& path);

/// Returns the place of a value that exists, even if it is null.
/// \throws Failure refused as findPlace, also if only the last step is missing
Place findValue(const Document& document, const Path& path);

} // namespace kel::tool
