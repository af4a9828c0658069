/// \file
/// AllowedValues: a quick check of values against their descriptors.
#pragma once

#include "Values.h"

#include <set>
#include <string>
#include <unordered_map>

namespace kel::tool {

/// Finds out whether variable descriptors allow values. A descriptor itself compares a value with
/// one allowed value after the other. This class looks scalars up instead, so that thousands of
/// variables can share a list of thousands of values. The descriptors must stay alive and
/// unchanged.
class AllowedValues {
public:
    /// Returns the same as the descriptor's isValid.
    bool isValid(const MetaKelVarDescriptor& rules, const KEL& value);

private:
    using Contents = std::set<std::string>;

    const Contents& contentsOf(const KEL_Array& allowed);

    std::unordered_map<const KEL_Array*, Contents> known_;
};

} // namespace kel::tool
