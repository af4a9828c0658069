/// \file
/// Finds the doubles that the text form carries.
#pragma once

#include <string_view>

namespace kel::tool {

/// Returns whether the double's text form, with six decimals, is read back as exactly the same
/// double. The text reader collects the digits before the point in 32 bits and adds up those after
/// it one by one. The result therefore depends on its arithmetic, not only on decimal places.
bool isCarriedByText(double value);

/// Returns the number that the text reader makes of an optional sign, digits, a point and digits.
double asReadFromText(std::string_view text);

} // namespace kel::tool
