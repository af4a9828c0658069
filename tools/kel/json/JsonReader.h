/// \file
/// Reads JSON.
#pragma once

#include "document/Document.h"
#include "document/Format.h"
#include "document/InputBytes.h"
#include "document/OutputBytes.h"
#include "losses/Losses.h"

#include <optional>
#include <string>

namespace kel::tool {

/// Reads all JSON texts in the content, one after the other, with white space between them unless
/// the first ends or the second begins with a bracket. Objects become structs and arrays stay
/// arrays. Integers of 32 bits become Ints, and other numbers become Doubles. {"$guid": "..."}
/// becomes a guid, and {"$memblock": "..."} becomes a memory block. The last of two equal names
/// wins.
/// \param inputName the name of the input in messages
/// \param target the format that the values will be written in, if there is one
/// \param losses gets the places that the values or the target cannot carry
/// \throws Failure malformed, as failureOf describes it
Document readJson(const InputBytes& content, const std::string& inputName,
                  std::optional<Format> target, Losses& losses);

/// Converts all JSON texts in the content to binary, as readJson reads them. Only a small part of
/// their values is in memory at a time.
/// \param file the file to write to, which can seek; null if all binary is to be returned
/// \return the binary that was not written
/// \throws NotInParts if binary cannot carry everything; readJson then also finds the reasons
/// \throws Failure malformed, as failureOf describes it
/// \throws Failure unwritten
OutputBytes recordsOfJson(const InputBytes& content, const std::string& inputName, std::FILE* file);

} // namespace kel::tool
