/// \file
/// Describes the records of a binary file line by line.
#pragma once

#include "dump/RecordFault.h"

#include <functional>
#include <optional>
#include <string_view>

namespace kel::tool {

/// Passes on a line for each record, in the order of the file, up to the first mistake.
/// \param passOn gets each line with its line end
/// \return the first mistake, or nothing if all records are sound
std::optional<RecordFault> dumpRecords(const InputBytes& content,
                                       const std::function<void(std::string_view)>& passOn);

} // namespace kel::tool
