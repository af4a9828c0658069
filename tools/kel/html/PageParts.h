/// \file
/// The page around the data: page.html with its style and script, which the build embeds.
#pragma once

#include <string_view>

namespace kel::tool {

/// Returns the page up to its data.
std::string_view pageBeforeData();

/// Returns the page after its data.
std::string_view pageAfterData();

} // namespace kel::tool
