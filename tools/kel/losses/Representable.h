/// \file
/// Makes a document representable in a format that cannot carry all of it.
#pragma once

#include "document/Document.h"
#include "document/Format.h"

#include <unordered_set>

namespace kel::tool {

/// Changes the document so that target has a form for everything in it:
///
/// - text: double quotes in strings become single ones; memory blocks and doubles that are not
///   finite become null, or are left out of an array; other doubles keep six decimals
/// - binary: guids become strings, null roots are left out, namesakes (values whose identity is
///   that of another) get an identity of their own
/// - binary and JSON: managers, index lists, checked structs and descriptors become plain data
/// - text and JSON: a value inside itself becomes null, or is left out of an array
///
/// Bytes that are not valid UTF-8 and doubles that are not finite are replaced by the writer of
/// JSON.
void makeRepresentable(Document& document, Format target,
                       const std::unordered_set<const KEL*>& namesakes);

} // namespace kel::tool
