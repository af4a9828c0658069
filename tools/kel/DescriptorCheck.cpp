#include "DescriptorCheck.h"

#include "AllowedValues.h"
#include "TreeCursor.h"
#include "ValueText.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

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

std::string wordsForAllowed(const KEL_Array& allowed) {
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

/// Returns the values that a variable can hold, in words.
std::string wordsForAllowed(Rules& rules) {
    if (rules.isRanged()) {
        return hasSoundRange(rules)
                   ? wordsFor(boundOf(rules, "min")) + " to " + wordsFor(boundOf(rules, "max"))
                   : "nothing";
    }
    const KEL_Array* allowed = allowedValuesOf(rules);
    return allowed == nullptr || allowed->getCount() == 0 ? "nothing" : wordsForAllowed(*allowed);
}

/// One pass over a document.
class Checker {
public:
    Checker(const ViolationReport& report, size_t rootCount)
        : report_(report), rootCount_(rootCount) {}

    /// Visits everything below a root.
    void visit(KEL* root, size_t rootNumber);

private:
    void checkPlace(const TreeCursor& cursor);
    void checkVariable(const TreeCursor& cursor, const MetaKel& owner);
    void checkRules(const TreeCursor& cursor, Rules& rules);
    void checkRange(const TreeCursor& cursor, Rules& rules);
    void report(const TreeCursor& cursor, const std::string& violation);

    const ViolationReport& report_;
    size_t rootCount_;
    size_t rootNumber_ = 0;
    std::unordered_set<const KEL*> met_;
    AllowedValues allowed_;
};

void Checker::visit(KEL* root, size_t rootNumber) {
    rootNumber_ = rootNumber;
    TreeCursor cursor(root);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        if (event == TreeCursor::Event::null || event == TreeCursor::Event::leave) {
            continue;
        }
        checkPlace(cursor);
        if (event != TreeCursor::Event::enter) {
            continue;
        }
        if (!met_.insert(cursor.value()).second) {
            cursor.skip();
        } else if (auto* rules = dynamic_cast<Rules*>(cursor.value())) {
            checkRules(cursor, *rules);
        }
    }
}

/// Checks a value against its container.
void Checker::checkPlace(const TreeCursor& cursor) {
    const KEL* container = cursor.container();
    const int32_t kind = container == nullptr ? 0 : container->getType();
    if (kind == KELKind_MetaKel) {
        checkVariable(cursor, dynamic_cast<const MetaKel&>(*container));
    } else if (kind == KELKind_MetaKelDescriptor &&
               cursor.value()->getType() != KELKind_MetaKelVarDescriptor) {
        report(cursor, wordsFor(cursor.value()) + " is not a variable descriptor");
    }
}

void Checker::checkVariable(const TreeCursor& cursor, const MetaKel& owner) {
    const MetaKelDescriptor* descriptor = owner.getDescriptor();
    const char* name = cursor.name();
    if (descriptor == nullptr || std::strcmp(name, descriptorName) == 0 ||
        !descriptor->containsVar(name)) {
        return;
    }
    auto* rules = dynamic_cast<Rules*>(memberOf(*descriptor, name));
    if (rules != nullptr && !allowed_.isValid(*rules, *cursor.value())) {
        report(cursor, wordsFor(cursor.value()) +
                           " is not allowed (allowed: " + wordsForAllowed(*rules) + ')');
    }
}

void Checker::checkRules(const TreeCursor& cursor, Rules& rules) {
    if (propertyOf(rules, "type") == nullptr) {
        report(cursor, "the type is missing");
    } else if (findKELKind(rules.getVariableType()) == nullptr) {
        report(cursor, "the type " + wordsFor(propertyOf(rules, "type")) + " is unknown");
    }
    if (rules.isRanged()) {
        checkRange(cursor, rules);
    } else if (rules.isEnumerated() && allowedValuesOf(rules) == nullptr) {
        report(cursor,
               "the allowed values are " + wordsFor(propertyOf(rules, "enum")) + ", not an array");
    }
    // If a range allows nothing, the default is not at fault.
    const bool isDefaultChecked = !rules.isRanged() || hasSoundRange(rules);
    KEL* standard = rules.getDefault();
    if (standard != nullptr && isDefaultChecked && !allowed_.isValid(rules, *standard)) {
        report(cursor, "the default " + wordsFor(standard) +
                           " is not allowed (allowed: " + wordsForAllowed(rules) + ')');
    }
}

void Checker::checkRange(const TreeCursor& cursor, Rules& rules) {
    const KEL* min = propertyOf(rules, "min");
    const KEL* max = propertyOf(rules, "max");
    if (!isNumber(min) || !isNumber(max)) {
        report(cursor,
               "the bounds " + wordsFor(min) + " and " + wordsFor(max) + " are not both numbers");
    } else if (boundOf(rules, "min") > boundOf(rules, "max")) {
        report(cursor, "min " + wordsFor(min) + " is above max " + wordsFor(max));
    } else if (findKELKind(rules.getVariableType()) != nullptr &&
               !isKindOfNumber(rules.getVariableType())) {
        report(cursor, "a range for a type that is neither Int nor Double");
    }
}

void Checker::report(const TreeCursor& cursor, const std::string& violation) {
    report_(withRoot(cursor.path(), rootNumber_, rootCount_) + ": " + violation);
}

} // namespace

void checkDescriptors(const Document& document, const ViolationReport& report) {
    Checker checker(report, document.roots().size());
    for (size_t i = 0; i < document.roots().size(); ++i) {
        checker.visit(document.roots()[i].get(), i);
    }
}

} // namespace kel::tool
