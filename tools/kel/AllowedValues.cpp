#include "AllowedValues.h"

#include <bit>
#include <cmath>
#include <limits>
#include <optional>

namespace kel::tool {

namespace {

/// Returns bytes that are the same for two scalars if they are equal in value, or nothing for a
/// container or a memory block.
std::optional<std::string> contentsOf(const KEL& value) {
    switch (kindOf(value).kind) {
    case KELKind_Int:
    case KELKind_Double: { // compared as numbers: there is one zero and one not-a-number
        const double number = value.toDouble() + 0.0;
        const auto bits = std::bit_cast<uint64_t>(
            std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number);
        return 'n' + std::to_string(bits);
    }
    case KELKind_Boolean:
        return value.toBoolean() ? "true" : "false";
    case KELKind_guid:
        return 'g' + std::string(value.toString());
    case KELKind_String:
        return 's' + std::string(value.toString());
    case KELKind_MemBlock:
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        break;
    }
    return std::nullopt;
}

} // namespace

bool AllowedValues::isValid(const MetaKelVarDescriptor& rules, const KEL& value) {
    if (!rules.isRanged() && rules.isEnumerated()) {
        const auto* allowed = dynamic_cast<const KEL_Array*>(memberOf(rules, "enum"));
        const std::optional<std::string> contents = tool::contentsOf(value);
        if (allowed != nullptr && contents) {
            return contentsOf(*allowed).contains(*contents);
        }
    }
    return rules.isValid(&value);
}

const AllowedValues::Contents& AllowedValues::contentsOf(const KEL_Array& allowed) {
    const auto [known, isNew] = known_.try_emplace(&allowed);
    if (isNew) {
        for (int32_t i = 0; i < allowed.getCount(); ++i) {
            if (std::optional<std::string> contents = tool::contentsOf(*allowed.getVar(i))) {
                known->second.insert(std::move(*contents));
            }
        }
    }
    return known->second;
}

} // namespace kel::tool
