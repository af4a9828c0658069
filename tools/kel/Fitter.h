/// \file
/// Making a document fit a format that cannot carry all of it.
#pragma once

#include "Document.h"
#include "Format.h"

namespace kel::tool {

/// Changes the document so that target has a form for everything in it:
///
/// - text: double quotes in strings become single ones; memory blocks and doubles that are not
///   finite become null, or are left out of an array; other doubles keep six decimals
/// - binary: guids become strings, managers become arrays of their values, null roots are left out
/// - text and JSON: a value inside itself becomes null, or is left out of an array
///
/// What JSON has no form for (bytes that are no UTF-8, infinities, managers) its writer replaces.
void fit(Document& document, Format target);

} // namespace kel::tool
