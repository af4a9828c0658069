/// \file
/// Recognises files that are not what they were read as.
#pragma once

#include "document/Format.h"

#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

/// Something other than the format that a content was read as.
struct ForeignFile {
    std::string name; ///< in words for `this is ...`
    std::string hint; ///< what can be done; empty if nothing can be said
};

/// Returns what a content is that could not be read as the format: a file of another program, text
/// of another encoding, or a file of another format of KEL. Returns nothing if it can be anything.
std::optional<ForeignFile> recogniseForeignFile(std::string_view content, Format format);

} // namespace kel::tool
