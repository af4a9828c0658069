/// \file
/// Text in colours.
#pragma once

#include "words/Painter.h"

#include <string>
#include <string_view>

namespace kel::tool {

/// Returns the text form of values with names, strings, numbers and words in their colours.
std::string painted(std::string_view text, const Painter& painter);

} // namespace kel::tool
