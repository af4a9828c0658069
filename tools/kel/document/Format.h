/// \file
/// Format: the three forms in which the tool reads and writes values.
#pragma once

#include "document/InputBytes.h"

#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

enum class Format { text, binary, json };

/// Returns "text", "binary" or "json".
const char* nameOf(Format format);

/// Returns the format of the file name's extension (.kel, .kelb or .json), or nothing for any
/// other.
std::optional<Format> formatOfName(std::string_view fileName);

/// Returns the format that the content certainly has: binary by its first bytes, JSON by a colon or
/// comma outside quotes, text by one of its own marks, whichever comes first. Returns nothing for
/// content that can be both JSON and text, such as `[]`.
std::optional<Format> formatOfContent(const InputBytes& bytes);

/// Returns the format of an input: by its content, otherwise by its name, otherwise text.
Format recogniseFormat(const InputBytes& content, std::string_view fileName);

} // namespace kel::tool
