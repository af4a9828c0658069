/// \file
/// Reads a whole input.
#pragma once

#include "document/Document.h"
#include "document/Format.h"
#include "document/InputBytes.h"
#include "losses/Losses.h"

#include <optional>
#include <string>

namespace kel::tool {

/// The bytes of an input.
struct Content {
    Format format;
    InputBytes bytes;
    /// The format by the input's name, unless the user gave the format.
    std::optional<Format> named = std::nullopt;

    /// Returns whether there may be checked structs and descriptors, for which only text has a
    /// form: a header.
    bool mayHoldDescriptors() const {
        return format == Format::text && bytes.view().find("@type") != std::string_view::npos;
    }
};

/// Reads the bytes of the named file, or of stdin for "-".
/// \param from the format to assume; if there is none, the format is found by the content, then by
///        the name
/// \throws Failure unreadable, "NAME: the system's reason"
Content readContent(const std::string& name, std::optional<Format> from);

/// Does the same without a copy of a large file in memory: the bytes are those of the mapped file.
/// The content must be destroyed before the file is replaced, which Windows otherwise prevents.
Content mapContent(const std::string& name, std::optional<Format> from);

/// The contents of an input.
struct Input {
    Format format;
    Document document;
    /// Whether there may be checked structs and descriptors, for which only text has a form.
    bool mayHoldDescriptors = false;
};

/// Reads the root values of an input.
/// \param name the name of the input in messages
/// \param target the format that the values will be written in, if there is one
/// \param losses gets the losses in reading: parts of JSON that values or the target cannot carry,
///        and the repeated names of binary
/// \throws Failure unreadable or malformed
Input readInput(Content&& content, const std::string& name, std::optional<Format> target,
                Losses& losses);

} // namespace kel::tool
