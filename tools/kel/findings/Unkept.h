/// \file
/// What values do not keep of the file that they were read from.
#pragma once

#include "document/Input.h"
#include "system/Console.h"

#include <string>

namespace kel::tool {

/// Returns whether values keep all that a text spells, so that refuseUnkept has nothing to refuse.
bool isKept(const InputBytes& text);

/// Refuses to write a text or JSON again whose values are not all that it spells: names that are
/// repeated, and numbers that wrapped around when they were read. Binary has neither.
/// \param content the bytes that the document was read from
/// \param isForced whether a warning suffices
/// \throws Failure refused, with a line for each of the first places
void refuseUnkept(const Content& content, const Document& document, const std::string& name,
                  bool isForced, Console& console);

} // namespace kel::tool
