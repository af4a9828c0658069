/// \file
/// DocumentScan: the contents of a document, examined before anything of it is written.
#pragma once

#include "document/Document.h"
#include "document/Format.h"
#include "losses/Losses.h"
#include "json/JsonLayout.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <unordered_set>

namespace kel::tool {

/// The size of a document as text and JSON. Both write a shared value wherever it occurs, so a
/// small binary file can unfold to more than any disk holds. Both indent, so a deep tree can be
/// mostly indentation.
struct DocumentScan {
    /// A number of bytes that text or JSON does not exceed, and that is usually less than twice as
    /// large as the output. All three numbers are saturated, and 0 for binary.
    uint64_t bytes = 0;
    /// The same without indentation.
    uint64_t bytesUnindented = 0;
    /// The same without indentation and with each container and each long scalar only once.
    uint64_t bytesOnce = 0;
    /// The path to the first value that is one of its own containers.
    std::optional<std::string> cycle;
    /// Whether there is a value that only text has a form for.
    bool hasTextOnly = false;
    /// The values that binary would confuse with another one, because an earlier value has the same
    /// identity. They are found together with the losses.
    std::unordered_set<const KEL*> namesakes;
};

/// Visits every value of the document once, in linear time. Unless the target is text, the scan
/// passes over "@desc" of checked structs, which is lost together with the checking.
/// \param target the format that the document is to be written in
/// \param losses gets every place that target cannot carry; a value in several places is listed at
///        its first place. Null if the losses are known already.
/// \param layout of the output, if it is JSON
DocumentScan scanDocument(const Document& document, Format target, Losses* losses,
                          const JsonLayout& layout = {});

/// Returns the greatest number of bytes that is written as text or JSON unless the user sets
/// another one. Only deep nesting and shared values need more than a multiple of the input.
constexpr uint64_t usualOutputLimit(uint64_t inputSize) {
    return std::max<uint64_t>(uint64_t{256} << 20U, 64 * inputSize);
}

/// Refuses a document that would be larger than the limit in the target format.
/// \throws Failure refused
void refuseHugeOutput(const DocumentScan& scan, Format target, uint64_t limit,
                      const std::string& inputName);

} // namespace kel::tool
