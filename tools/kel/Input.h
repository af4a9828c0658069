/// \file
/// Reads a whole input.
#pragma once

#include "Document.h"
#include "Format.h"
#include "Losses.h"

#include <optional>
#include <string>

namespace kel::tool {

/// Returns all bytes of the named file, or of stdin for "-".
/// \throws Failure unreadable, "NAME: the system's reason"
std::string readBytes(const std::string& name);

/// The contents of an input.
struct Input {
    Format format;
    Document document;
    /// Whether there may be checked structs and descriptors, for which only text has a form.
    bool mayHoldDescriptors = false;
};

/// Reads the root values of the named file, or of stdin for "-".
/// \param from the format to assume; if there is none, the format is found by the content, then by
///        the name
/// \param target the format that the values will be written in, if there is one
/// \param losses gets the losses in reading: parts of JSON that values or the target cannot carry,
///        and the repeated names of binary
/// \throws Failure unreadable or malformed
Input readInput(const std::string& name, std::optional<Format> from, std::optional<Format> target,
                Losses& losses);

} // namespace kel::tool
