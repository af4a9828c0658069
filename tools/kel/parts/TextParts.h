/// \file
/// Visits the root values of a text part by part.
#pragma once

#include "document/InputBytes.h"
#include "parts/PartLimits.h"
#include "parts/RootVisitor.h"

namespace kel::tool {

/// Shows the visitor all root values of a text. Only a small part of them is in memory at a time,
/// unless a struct at the root or an element of an array there is large.
/// \param size of a part, as in outlineText
/// \return false, before the visitor is called, for a text that cannot be read in parts
/// \throws UnreadablePart if the library refuses a part
bool visitPlainText(const InputBytes& content, RootVisitor& visitor, size_t size = textPartSize);

} // namespace kel::tool
