/// \file
/// Which doubles the text form carries.
#pragma once

namespace kel::tool {

/// True when the double's text form, six decimals, is read back as exactly the same double. The
/// text reader collects the digits before the point in 32 bits and adds up those after it one by
/// one, so this is a matter of its arithmetic and not of decimal places alone.
bool isCarriedByText(double value);

} // namespace kel::tool
