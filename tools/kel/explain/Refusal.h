/// \file
/// The failures for inputs that cannot be read, with the place and the reason.
#pragma once

#include "document/Format.h"
#include "explain/Fault.h"
#include "failures/Failure.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kel::tool {

/// An input that the library or the JSON parser has refused. They decide what is valid; the input
/// is scanned again only to find words for a person. If the scan finds nothing, the original
/// message stands.
struct Refusal {
    Format format;
    std::string_view content;
    const std::string& inputName;
    size_t begin;        ///< of the part that was refused: of JSON, the current root value
    size_t stop;         ///< the offset just after the last byte that was consumed
    std::string message; ///< of the library or the parser, without a place
    /// The format by the name of the input, if only the content decided on the format. A broken
    /// JSON file can look like text.
    std::optional<Format> named = std::nullopt;
};

/// Returns the failure for a fault in a text or JSON, which is malformed:
///
///     settings.kel:3:13: expected a value, found "}"
///         3 |     width = }
///           |             ^
///           = hint: ...
///
/// \param content the text that the fault is in
/// \param inputName the name of the input
Failure failureAt(std::string_view content, const std::string& inputName, const Fault& fault);

/// Returns the failure, which is malformed: "INPUT:LINE:COLUMN: what is wrong" with the line and a
/// mark for text and JSON, "INPUT: offset N: PATH: what is wrong" for binary.
Failure failureOf(const Refusal& refusal);

} // namespace kel::tool
