/// \file
/// The words for kinds on the command line and in tables.
#pragma once

#include <cstdint>
#include <kel/KELKind.h>
#include <string>
#include <vector>

namespace kel::tool {

/// Returns the word for the kind: the name of its class in lower case, such as "int".
std::string wordOf(const KELKindFacts& facts);

/// Stands for null among the codes of kinds.
constexpr int32_t kindOfNull = 0;

/// Returns "null" and the words for all kinds.
std::vector<std::string> kindWords();

/// Returns the code of the kind with the word, which must be one of kindWords.
int32_t kindOfWord(const std::string& word);

} // namespace kel::tool
