/// \file
/// AllowedValues: what descriptors allow, found quickly.
#pragma once

#include "Values.h"

#include <set>
#include <string>
#include <unordered_map>

namespace kel::tool {

/// Answers whether variable descriptors allow values. A descriptor itself compares a value with one
/// allowed value after the other; here scalars are looked up, so that thousands of variables may
/// share a list of thousands of values. The descriptors have to stay alive and as they are.
class AllowedValues {
public:
    /// The same as the descriptor's isValid.
    bool isValid(const MetaKelVarDescriptor& rules, const KEL& value);

private:
    using Contents = std::set<std::string>;

    const Contents& contentsOf(const KEL_Array& allowed);

    std::unordered_map<const KEL_Array*, Contents> known_;
};

} // namespace kel::tool
