/// \file
/// Writes JSON.
#pragma once

#include "Document.h"

#include <cstdio>

namespace kel::tool {

/// Writes all root values as JSON: a single one indented by four spaces, several ones compactly,
/// one on each line. Structs become objects in the order of their names. Doubles always have a
/// point or an exponent and read back exactly. Contents that JSON has no form for are replaced:
/// bytes that are not valid UTF-8 by U+FFFD, and doubles that are not finite by null. Values
/// without any plain form must have been replaced by makeRepresentable before. The document must
/// not contain a value inside itself. \throws Failure unwritten with the system's reason as its
/// message
void writeJson(const Document& document, std::FILE* file);

} // namespace kel::tool
