/// \file
/// DocumentScan: what a document holds, before anything of it is written.
#pragma once

#include "Document.h"
#include "Format.h"
#include "Losses.h"

#include <optional>
#include <unordered_set>

namespace kel::tool {

/// The size of a document as text and JSON. Both write a shared value wherever it occurs, so a
/// small binary file can unfold to more than any disk holds; and text indents every level with a
/// tab, so a deep tree can be mostly tabs. The counts are saturated far above the limits.
struct DocumentScan {
    /// More values than this are refused in text and JSON.
    static constexpr uint64_t mostValues = uint64_t{1} << 31U;
    /// More bytes than this, tabs and characters of strings and names, are refused likewise.
    static constexpr uint64_t mostBytes = uint64_t{1} << 34U;

    uint64_t values = 0;
    uint64_t bytes = 0;
    /// The way to the first value that is one of the containers it lies in.
    std::optional<std::string> cycle;
    /// Whether there is a value that only text has a form for.
    bool hasTextOnly = false;
    /// The values that binary would take for another one, because their identity is that of a value
    /// before them. Found together with the losses.
    std::unordered_set<const KEL*> namesakes;
};

/// Looks at every value of the document once, in linear time. Unless the target is text, the scan
/// passes over "@desc" of checked structs, which is lost together with the checking.
/// \param target the format that the document is to be written in
/// \param losses gets every place that target cannot carry; a value that sits in several places is
///        listed where it comes first. Null when the losses are known already.
DocumentScan scanDocument(const Document& document, Format target, Losses* losses);

/// Refuses a document that would be too large in the target format.
/// \throws Failure refused
void refuseHugeOutput(const DocumentScan& scan, Format target, const std::string& inputName);

} // namespace kel::tool
