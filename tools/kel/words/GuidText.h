/// \file
/// Converts between GUIDs and their text layout.
#pragma once

#include <kel/JHashCode.h>
#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

/// Returns the GUID that the text spells: 8-4-4-4-12 hexadecimal digits in either case and nothing
/// else. Returns nothing for any other text.
std::optional<JHashCode> guidOfText(std::string_view text);

/// Returns the 36 characters of the GUID.
std::string textOfGuid(const JHashCode& guid);

} // namespace kel::tool
