/// \file
/// The elements of a manager, which can only be asked for by their identities.
#pragma once

#include "Values.h"

#include <vector>

namespace kel::tool {

/// The manager's elements in its order, borrowed from it. A manager does not list its elements to
/// hosts, but its text form names the identity of each, so this reads the identities there.
/// \throws Failure refused when the text form exceeds 64 MiB
std::vector<KEL*> elementsOf(KEL_Manager& manager);

} // namespace kel::tool
