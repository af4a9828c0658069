/// \file
/// Place: where a path leads in a document.
#pragma once

#include "document/Document.h"
#include "failures/Failure.h"
#include "path/Path.h"

#include <vector>

namespace kel::tool {

/// A place in a document, where a value can stand. It borrows from the document.
struct Place {
    size_t root;    ///< the number of the root value, from 0
    KEL* container; ///< the value around the place; null for a root value
    Step step;      ///< the step from the container; nothing for a root value
    int32_t index;  ///< the number of the element or pair in the container, or 0
    bool isThere;   ///< whether the container has such a variable or element, even a null one
    KEL* value;     ///< the value at the place, or null
    /// Whether the value, or one around it, is the default of a descriptor: the variable is missing
    /// in its checked struct.
    bool isDefault = false;
};

/// Thrown if a path leads nowhere in a document, although it is clear which place it means.
struct NotFound : Failure {};

/// How a path reaches a place.
struct Way {
    /// A container on the way, with the number of steps of the path that lead to it.
    struct Stop {
        KEL* container;
        size_t steps;
    };

    Path path; ///< with the number of the root value and whole identities, from the root value on
    std::vector<Stop> stops; ///< from the root value on, without the place itself
};

/// Returns the place that the path leads to. Its last step can be missing in the document; a caller
/// that needs a value must look at isThere.
/// \param way gets the way to the place, unless it is null
/// \throws NotFound refused, "PATH: what is missing", for a step that leads nowhere, with similar
///         names
/// \throws Failure refused for a path without the number of a root value if there are several, and
///         for digits that several identities begin with
Place findPlace(const Document& document, const Path& path, Way* way = nullptr);

/// Returns the place of a value that exists, even if it is null.
/// \throws Failure as findPlace, also if only the last step is missing
Place findValue(const Document& document, const Path& path);

/// Returns the same as findValue. If a variable is missing in a checked struct, uses the default of
/// its descriptor, as the struct itself does.
/// \throws Failure as findValue
Place findValueOrDefault(const Document& document, const Path& path);

} // namespace kel::tool
