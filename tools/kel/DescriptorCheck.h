/// \file
/// Checks whether values keep to their descriptors.
#pragma once

#include "Document.h"

#include <functional>
#include <string>

namespace kel::tool {

/// Takes one violation, "PATH: what is wrong", on one line.
using ViolationReport = std::function<void(const std::string&)>;

/// Visits every value of the document once, in the order of its text form, and reports
///
/// - every variable of a checked struct that its descriptor finds invalid, with what is allowed;
///   null and missing variables are not violations
/// - every variable descriptor that no variable could keep to, or that contradicts itself
///
/// A value in several places is checked at its first place.
void checkDescriptors(const Document& document, const ViolationReport& report);

} // namespace kel::tool
