#include "check/ViolationFinder.h"

#include "words/ValueText.h"

#include <algorithm>
#include <cstring>

namespace kel::tool {

namespace {

using Rules = MetaKelVarDescriptor;

/// Returns a descriptor's property, or null if it is absent or holds nothing.
KEL* propertyOf(const Rules& rules, const char* name) {
    return rules.containsVar(name) ? memberOf(rules, name) : nullptr;
}

/// Returns the allowed values, or null if they are not in an array.
KEL_Array* allowedValuesOf(const Rules& rules) {
    return dynamic_cast<KEL_Array*>(propertyOf(rules, "enum"));
}

bool isNumber(const KEL* value) {
    return value != nullptr &&
           (value->getType() == KELKind_Int || value->getType() == KELKind_Double);
}

bool isKindOfNumber(int32_t kind) {
    return kind == KELKind_Int || kind == KELKind_Double;
}

/// Returns a bound in the form in which values are compared with it.
double boundOf(Rules& rules, const char* name) {
    const KEL* bound = propertyOf(rules, name);
    return rules.getVariableType() == KELKind_Int ? bound->toInt() : bound->toDouble();
}

/// Returns whether the bounds are numbers in order, and the variable is of a kind that has bounds.
bool hasSoundRange(Rules& rules) {
    return isNumber(propertyOf(rules, "min")) && isNumber(propertyOf(rules, "max")) &&
           isKindOfNumber(rules.getVariableType()) &&
           boundOf(rules, "min") <= boundOf(rules, "max");
}

std::string listOfAllowed(const KEL_Array& allowed) {
    constexpr int32_t listed = 10;
    std::string words;
    for (int32_t i = 0; i < std::min(allowed.getCount(), listed); ++i) {
        words += (i == 0 ? "" : ", ") + wordsFor(allowed.getVar(i));
    }
    if (allowed.getCount() > listed) {
        words += " and " + std::to_string(allowed.getCount() - listed) + " more";
    }
    return words;
}

} // namespace

std::string wordsForAllowed(Rules& rules) {
    if (rules.isRanged()) {
        return hasSoundRange(rules)
                   ? wordsFor(boundOf(rules, "min")) + " to " + wordsFor(boundOf(rules, "max"))
                   : "nothing";
    }
    const KEL_Array* allowed = allowedValuesOf(rules);
    return allowed == nullptr || allowed->getCount() == 0 ? "nothing" : listOfAllowed(*allowed);
}

namespace {

/// Reports why the bounds of a range allow nothing.
void checkRange(Rules& rules, const ViolationFinder::Report& report) {
    const KEL* min = propertyOf(rules, "min");
    const KEL* max = propertyOf(rules, "max");
    if (!isNumber(min) || !isNumber(max)) {
        report("the bounds " + wordsFor(min) + " and " + wordsFor(max) + " are not both numbers");
    } else if (boundOf(rules, "min") > boundOf(rules, "max")) {
        report("min " + wordsFor(min) + " is above max " + wordsFor(max));
    } else if (findKELKind(rules.getVariableType()) != nullptr &&
               !isKindOfNumber(rules.getVariableType())) {
        report("a range for a type that is neither Int nor Double");
    }
}

} // namespace

void ViolationFinder::checkPlace(const KEL* container, const char* name, KEL& value,
                                 const Report& report) {
    const int32_t kind = container == nullptr ? 0 : container->getType();
    if (kind == KELKind_MetaKel) {
        checkVariable(dynamic_cast<const MetaKel&>(*container), name, value, report);
    } else if (kind == KELKind_MetaKelDescriptor &&
               value.getType() != KELKind_MetaKelVarDescriptor) {
        report(wordsFor(&value) + " is not a variable descriptor");
    }
}

void ViolationFinder::checkVariable(const MetaKel& owner, const char* name, KEL& value,
                                    const Report& report) {
    const MetaKelDescriptor* descriptor = owner.getDescriptor();
    if (descriptor == nullptr || std::strcmp(name, descriptorName) == 0 ||
        !descriptor->containsVar(name)) {
        return;
    }
    auto* rules = dynamic_cast<Rules*>(memberOf(*descriptor, name));
    if (rules != nullptr) {
        checkValue(*rules, value, report);
    }
}

void ViolationFinder::checkValue(Rules& rules, KEL& value, const Report& report) {
    if (!allowed_.isValid(rules, value)) {
        report(wordsFor(&value) + " is not allowed (allowed: " + wordsForAllowed(rules) + ')');
    }
}

void ViolationFinder::checkRules(Rules& rules, const Report& report) {
    if (propertyOf(rules, "type") == nullptr) {
        report("the type is missing");
    } else if (findKELKind(rules.getVariableType()) == nullptr) {
        report("the type " + wordsFor(propertyOf(rules, "type")) + " is unknown");
    }
    if (rules.isRanged()) {
        checkRange(rules, report);
    } else if (rules.isEnumerated() && allowedValuesOf(rules) == nullptr) {
        report("the allowed values are " + wordsFor(propertyOf(rules, "enum")) + ", not an array");
    }
    // If a range allows nothing, the default is not at fault.
    const bool isDefaultChecked = !rules.isRanged() || hasSoundRange(rules);
    KEL* standard = rules.getDefault();
    if (standard != nullptr && isDefaultChecked && !allowed_.isValid(rules, *standard)) {
        report("the default " + wordsFor(standard) +
               " is not allowed (allowed: " + wordsForAllowed(rules) + ')');
    }
}

} // namespace kel::tool
