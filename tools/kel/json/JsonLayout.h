/// \file
/// JsonLayout: how JSON is divided into lines.
#pragma once

#include <cstddef>

namespace kel::tool {

/// Whether JSON is indented, and by what.
struct JsonLayout {
    /// The roots whose values are on lines of their own. All others are on one line each.
    enum class Indented { onlyRoot, all, none };

    /// Deeper levels are written on one line. Otherwise a deep tree would be mostly indentation.
    static constexpr size_t levels = 40;
    static constexpr size_t mostWidth = 8;

    Indented indented = Indented::onlyRoot;
    char blank = ' ';
    size_t width = 4; ///< the number of blanks for each level, up to mostWidth

    /// Returns whether the values of a document with this number of roots are indented.
    bool indents(size_t roots) const {
        return indented == Indented::all || (indented == Indented::onlyRoot && roots == 1);
    }
};

} // namespace kel::tool
