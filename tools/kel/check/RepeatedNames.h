/// \file
/// Finds names that occur more than once in a struct of a binary file.
#pragma once

#include "losses/Losses.h"

#include <string_view>

namespace kel::tool {

/// Adds a loss for every variable of a binary file whose name its struct has already. Reading keeps
/// only the last of such variables, so the values do not show that there were others. Examines
/// content only as far as it consists of sound records.
void findRepeatedNames(std::string_view content, Losses& losses);

} // namespace kel::tool
