/// \file
/// Visits the root values of a binary file part by part.
#pragma once

#include "document/InputBytes.h"
#include "parts/RootVisitor.h"

#include <optional>

namespace kel::tool {

/// Returns the number of root records if the content consists of sound records without references,
/// and the names of every struct ascend. Only such files can be read in parts.
std::optional<size_t> countPlainRoots(const InputBytes& content);

/// Shows the visitor all root values of a binary file. Only a small part of them is in memory at a
/// time, unless a struct at the root or an element of an array there is large.
/// \return false, before the visitor is called, for a file that cannot be read in parts
/// \throws UnreadablePart if the bytes change meanwhile
bool visitPlainRecords(const InputBytes& content, RootVisitor& visitor);

} // namespace kel::tool
