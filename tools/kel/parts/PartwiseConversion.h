/// \file
/// Converts a file part by part.
#pragma once

#include "document/Input.h"
#include "document/OutputBytes.h"
#include "identities/StableIdentities.h"
#include "system/OutputFile.h"
#include "json/JsonLayout.h"

#include <memory>
#include <optional>
#include <string>

namespace kel::tool {

/// A complete output, either in a file that was not committed yet or in memory.
struct Converted {
    std::unique_ptr<OutputFile> file; ///< null if the output is in memory
    OutputBytes bytes;
};

/// The form of the output.
struct OutputForm {
    Format format;
    JsonLayout layout = {};                       ///< of JSON
    const StableIdentities* identities = nullptr; ///< of binary; null for drawn ones
};

/// Converts between JSON and binary with only a small part of the values in memory at a time. Makes
/// the same bytes as a conversion of the whole document, apart from drawn identities. Returns
/// nothing if the document must be converted as a whole: if anything is lost, if values are shared,
/// if names in binary are not in order, if the limit needs an exact count, and for all other
/// formats.
/// \param limit the greatest number of bytes to write as JSON
/// \param inputName the name of the input in messages
/// \param outputName the name of the output, or "-" for stdout
/// \throws Failure malformed or unwritten
std::optional<Converted> convertInParts(const Content& content, const OutputForm& form,
                                        uint64_t limit, const std::string& inputName,
                                        const std::string& outputName);

} // namespace kel::tool
