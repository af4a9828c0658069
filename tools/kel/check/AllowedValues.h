/// \file
/// AllowedValues: a quick check of values against their descriptors.
#pragma once

#include "check/ContentNumbers.h"

#include <unordered_map>
#include <unordered_set>

namespace kel::tool {

/// Finds out whether variable descriptors allow values. A descriptor itself compares a value with
/// one allowed value after the other. This class looks values up by their contents instead, so that
/// thousands of variables can share a list of thousands of values. The descriptors and the values
/// must stay alive and unchanged.
class AllowedValues {
public:
    /// Returns the same as the descriptor's isValid.
    bool isValid(const MetaKelVarDescriptor& rules, KEL& value);

private:
    using Numbers = std::unordered_set<uint64_t>;

    const Numbers& numbersIn(const KEL_Array& allowed);

    ContentNumbers contents_;
    std::unordered_map<const KEL_Array*, Numbers> lists_;
};

} // namespace kel::tool
