/// \file
/// Checks whether values keep to their descriptors.
#pragma once

#include "document/Document.h"
#include "findings/Finding.h"

namespace kel::tool {

/// Visits every value of the document once, in the order of its text form, and reports
///
/// - every variable of a checked struct that its descriptor finds invalid, with what is allowed;
///   null and missing variables are not violations
/// - every variable descriptor that no variable could keep to, or that contradicts itself
///
/// A strict check also reports
///
/// - every variable of a checked struct, and every default, whose kind is not the described one,
///   unless it is a number that can be converted without loss
/// - every variable of a checked struct that its descriptor does not know
/// - a "@desc" that is not a struct descriptor
///
/// A value in several places is checked at its first place.
/// \param found gets the findings
void checkDescriptors(const Document& document, bool isStrict, Findings& found);

} // namespace kel::tool
