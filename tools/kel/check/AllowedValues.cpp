#include "check/AllowedValues.h"

namespace kel::tool {

bool AllowedValues::isValid(const MetaKelVarDescriptor& rules, KEL& value) {
    if (rules.isRanged() || !rules.isEnumerated()) {
        return rules.isValid(&value);
    }
    const auto* allowed = dynamic_cast<const KEL_Array*>(memberOf(rules, "enum"));
    if (allowed == nullptr) {
        return rules.isValid(&value);
    }
    const Numbers& list = numbersIn(*allowed);
    if (keyOfScalar(value)) {
        const std::optional<uint64_t> number = contents_.findScalar(value);
        return number && list.contains(*number);
    }
    const std::optional<uint64_t> number = contents_.numberOf(value);
    return number ? list.contains(*number) : rules.isValid(&value);
}

/// Returns the numbers of the allowed values. One without a number equals only values that have
/// none either.
const AllowedValues::Numbers& AllowedValues::numbersIn(const KEL_Array& allowed) {
    const auto [known, isNew] = lists_.try_emplace(&allowed);
    for (int32_t i = 0; isNew && i < allowed.getCount(); ++i) {
        if (const std::optional<uint64_t> number = contents_.numberOf(*allowed.getVar(i))) {
            known->second.insert(*number);
        }
    }
    return known->second;
}

} // namespace kel::tool
