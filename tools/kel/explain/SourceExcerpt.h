/// \file
/// Messages about a place in a text: file, line, column, and the line itself with a mark.
#pragma once

#include "explain/Fault.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kel::tool {

/// A place in a text. Lines end with LF, and columns count characters of UTF-8. Every byte that is
/// not UTF-8 counts as one character.
struct SourcePlace {
    uint64_t line;   ///< from 1
    uint64_t column; ///< from 1
};

/// Returns the place of an offset of the content.
SourcePlace sourcePlaceOf(std::string_view content, size_t at);

/// Returns "LINE:COLUMN" for an offset of the content.
std::string sourcePlace(std::string_view content, size_t at);

/// Returns the offset just after the last character that is not white space.
size_t endOfInk(std::string_view content);

/// Returns the line around a fault, with its number and a mark below the culprit, and its hint.
/// Each of these lines begins with a line end:
///
///         3 |     width = }
///           |             ^
///           = hint: ...
///
/// Tabs of the line are kept, control characters become escapes, and of a long line only the part
/// around the culprit is shown. The time does not depend on the size of the content.
/// \param lineNumber the number of the line, as it is shown
std::string excerptOf(std::string_view content, const Fault& fault, std::string_view lineNumber);

} // namespace kel::tool
