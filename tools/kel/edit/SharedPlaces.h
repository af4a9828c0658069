/// \file
/// Finds the other places that a change inside a shared value changes too.
#pragma once

#include "path/Place.h"

#include <string>
#include <vector>

namespace kel::tool {

/// Returns a sentence for each place that stands inside a shared container, such as
/// `a.x: the value around it is shared, so this also changes b.x`. It lists up to ten other places,
/// and says if there are more. Visits every value of the document once or twice.
/// \param ways the ways to the places, as findPlace gives them
std::vector<std::string> describeSharing(const Document& document, const std::vector<Way>& ways);

} // namespace kel::tool
