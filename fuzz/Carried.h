/// \file
/// What the formats carry of a tree, as their pages promise it.
#pragma once

#include "support/Held.h"
#include "values/KEL_Impl.h"

#include <list>

namespace kel::fuzz {

/// The facts about a tree that decide what has to survive in a format.
struct Carried {
    bool byBinary = true;      ///< every kind in it has a binary form
    bool byText = true;        ///< text restores it: no memory block, no double quote, no double
                               ///< that text rounds or refuses, nothing that contains itself
    bool isSmall = true;       ///< written in full in each of its places, it is not large
    bool hasNamesakes = false; ///< two values have one identity that is not zero
    bool hasNaN = false;       ///< a double in it differs from itself
    bool isCyclic = false;     ///< a value contains itself
};

/// Returns the facts about the tree below root.
Carried carried(KEL_Impl& root);

/// Ends the process unless every value below the roots has exactly as many references as there are
/// places in containers and in the list. Nobody else can hold a value meanwhile.
void requireExactCounts(const std::list<test::Held<KEL_Impl>>& roots);

} // namespace kel::fuzz
