/// \file
/// Reading a whole input.
#pragma once

#include "Document.h"
#include "Format.h"
#include "Losses.h"

#include <optional>
#include <string>

namespace kel::tool {

/// All bytes of the named file, of stdin for "-".
/// \throws Failure unreadable, "NAME: the system's reason"
std::string readBytes(const std::string& name);

/// The contents of an input.
struct Input {
    Format format;
    Document document;
    /// Whether there may be checked structs and descriptors, which text alone has a form for.
    bool mayHoldDescriptors = false;
};

/// Reads the root values of the named file, of stdin for "-".
/// \param from the format to take it for; by its content, else by its name when there is none
/// \param target the format that the values go to, if there is one
/// \param losses gets what is lost in reading: what values or the target cannot carry of JSON, and
///        the repeated names of binary
/// \throws Failure unreadable or malformed
Input readInput(const std::string& name, std::optional<Format> from, std::optional<Format> target,
                Losses& losses);

} // namespace kel::tool
