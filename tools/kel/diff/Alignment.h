/// \file
/// Finds what two sequences have in common.
#pragma once

#include "diff/KeyedHash.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace kel::tool {

/// Pairs of positions in two sequences, ascending in both.
using Alignment = std::vector<std::pair<size_t, size_t>>;

/// Returns a longest common subsequence of two sequences, as long as it can be found in reasonable
/// time, in linear memory. Myers' algorithm takes time in proportion to the length and the number
/// of differences. If a part needs more than a few hundred differences, it is divided where most
/// was found in common so far. The result is then a common subsequence that can be shorter than
/// the longest one, and the time stays in proportion to the length.
Alignment commonSubsequence(const std::vector<KeyedDigest>& before,
                            const std::vector<KeyedDigest>& after);

} // namespace kel::tool
