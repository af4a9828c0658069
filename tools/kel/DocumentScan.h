/// \file
/// DocumentScan: the contents of a document, examined before anything of it is written.
#pragma once

#include "Document.h"
#include "Format.h"
#include "Losses.h"

#include <optional>
#include <unordered_set>

namespace kel::tool {

/// The size of a document as text and JSON. Both write a shared value wherever it occurs, so a
/// small binary file can unfold to more than any disk holds. Text also indents every level with a
/// tab, so a deep tree can be mostly tabs. The counts are saturated far above the limits.
struct DocumentScan {
    /// The greatest number of values that is written as text and JSON.
    static constexpr uint64_t mostValues = uint64_t{1} << 31U;
    /// The greatest number of bytes that is written: tabs and characters of strings and names.
    static constexpr uint64_t mostBytes = uint64_t{1} << 34U;

    uint64_t values = 0;
    uint64_t bytes = 0;
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
DocumentScan scanDocument(const Document& document, Format target, Losses* losses);

/// Refuses a document that would be too large in the target format.
/// \throws Failure refused
void refuseHugeOutput(const DocumentScan& scan, Format target, const std::string& inputName);

} // namespace kel::tool
