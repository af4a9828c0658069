/// \file
/// Reading JSON.
#pragma once

#include "Document.h"
#include "Format.h"
#include "Losses.h"

#include <optional>
#include <string>

namespace kel::tool {

/// Reads all JSON texts in the content, one after the other, with white space between them unless
/// the first ends or the second begins with a bracket. Objects become structs, arrays arrays,
/// integers of 32 bits Ints, other numbers Doubles, {"$guid": "..."} guids and
/// {"$memblock": "..."} memory blocks. The last of two equal names wins.
/// \param inputName how messages call the input
/// \param target the format that the values go to, if there is one
/// \param losses gets what the values or the target cannot carry
/// \throws Failure malformed, "INPUT:LINE: what is wrong"
Document readJson(std::string content, const std::string& inputName, std::optional<Format> target,
                  Losses& losses);

} // namespace kel::tool
