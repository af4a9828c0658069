/// \file
/// What the model knows about descriptions.
#pragma once

#include "calls/Nodes.h"
#include "values/Conversions.h"

#include <string>

namespace kel::fuzz {

/// Returns the descriptor in use of a checked struct, or null.
inline Node* descriptorOf(const Node& checked) {
    Node* stored = checked.variable("@desc");
    return stored != nullptr && stored->kind == KELKind_MetaKelDescriptor ? stored : nullptr;
}

/// Returns the description of a variable of a checked struct, or null.
inline Node* rulesOf(const Node& checked, const std::string& name) {
    const Node* descriptor = descriptorOf(checked);
    Node* rules = descriptor == nullptr ? nullptr : descriptor->variable(name);
    return rules != nullptr && rules->kind == KELKind_MetaKelVarDescriptor ? rules : nullptr;
}

inline bool isRanged(const Node& rules) {
    return rules.variables.contains("min") && rules.variables.contains("max");
}

inline bool isEnumerated(const Node& rules) {
    return rules.variables.contains("enum");
}

/// Returns the array of allowed values, or null.
inline Node* allowedBy(const Node& rules) {
    Node* allowed = rules.variable("enum");
    return allowed != nullptr && allowed->kind == KELKind_Array ? allowed : nullptr;
}

/// Returns the stated kind. The conversions have tests of their own, so the model uses them.
inline int32_t typeIn(const Node& rules) {
    return convertToInt(realOf(rules.variable("type")));
}

/// Returns whether a value lies in the range of a ranged variable.
inline bool isInRange(const Node& rules, const KEL* value) {
    const KEL* min = realOf(rules.variable("min"));
    const KEL* max = realOf(rules.variable("max"));
    if (value == nullptr) {
        return false;
    }
    if (typeIn(rules) == KELKind_Int) {
        return convertToInt(min) <= convertToInt(value) && convertToInt(value) <= convertToInt(max);
    }
    return typeIn(rules) == KELKind_Double && convertToDouble(min) <= convertToDouble(value) &&
           convertToDouble(value) <= convertToDouble(max);
}

/// Returns whether an allowed value has equal contents.
inline bool isAllowed(const Node& rules, const KEL* value) {
    const Node* allowed = allowedBy(rules);
    return value != nullptr && allowed != nullptr &&
           std::any_of(allowed->elements.begin(), allowed->elements.end(),
                       [value](const Node* element) { return element->real->equalsValue(value); });
}

/// Returns whether the description finds a value valid; null describes nothing.
inline bool isValid(const Node* rules, const KEL* value) {
    return rules == nullptr || (isRanged(*rules)       ? isInRange(*rules, value)
                                : isEnumerated(*rules) ? isAllowed(*rules, value)
                                                       : true);
}

} // namespace kel::fuzz
