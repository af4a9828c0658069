/// \file
/// Format: the three forms in which the tool reads and writes values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

enum class Format { text, binary, json };

/// "text", "binary" or "json".
const char* nameOf(Format format);

/// The format of the file name's extension: .kel, .kelb or .json; nothing for any other.
std::optional<Format> formatOfName(std::string_view fileName);

/// The format that the content shows beyond doubt: binary by its first bytes, JSON by a colon or
/// comma outside quotes, text by whatever of its own marks comes first. Nothing for content that
/// both JSON and text could be, such as `[]`.
std::optional<Format> formatOfContent(std::string_view content);

/// The format of an input: by its content, else by its name, else text.
Format recogniseFormat(std::string_view content, std::string_view fileName);

} // namespace kel::tool
