/// \file
/// What the description of a variable allows.
#pragma once

#include <kel/cpp/text_length.hpp>

#include <climits>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns a bound of a range, which another program can have described.
/// \throws type_error for something else than a number
inline double bound_of(KEL* bound) {
    double number = 0;
    if (bound == nullptr || read(*bound, number) != reading::done) {
        raise_wrong_kind("the bound of a range", words(kind::real), bound);
    }
    return number;
}

/// Return the ends of the range.
inline double least_of(const MetaKelVarDescriptor& rules) {
    return bound_of(call([&] { return rules.getMin(); }));
}
inline double greatest_of(const MetaKelVarDescriptor& rules) {
    return bound_of(call([&] { return rules.getMax(); }));
}

/// Returns the list of allowed values. Returns null if the description has none, or something else
/// than an array.
inline value find_choices(const MetaKelVarDescriptor& rules) {
    return call([&] {
        return value(share(array_of(
            find_variable(*walk_of(rules.getStruct()), rules.getStruct(), "enum").object)));
    });
}

/// Returns the list of allowed values.
/// \throws type_error where find_choices returns null
inline value choices_of(const MetaKelVarDescriptor& rules) {
    value list = find_choices(rules);
    if (!list) {
        raise_wrong_kind("the allowed values", words(kind::array), nullptr);
    }
    return list;
}

/// Returns a value for a message: numbers in their shortest form, text in quotes and not longer
/// than a line or two.
inline std::string shown(KEL* object) {
    const std::int32_t type = type_of(object);
    if (type == KELKind_Double) {
        return shortest(object->toDouble());
    }
    const char* characters = type == 0 ? nullptr : object->toString();
    if (characters == nullptr) {
        return words(static_cast<kind>(type));
    }
    constexpr std::size_t most = 200;
    return type == KELKind_String ? '"' + printable(characters, most) + '"' : characters;
}

/// Returns a value as a person reads and types it: text without quotes.
inline std::string plain_text(KEL* object) {
    return type_of(object) == KELKind_String ? object->toString() : shown(object);
}

inline std::string text_of(const char* characters) {
    return characters == nullptr ? "" : characters;
}

/// Returns the description of a variable, borrowed, or null.
inline MetaKelVarDescriptor* description_of(const MetaKel& target, const char* name) {
    MetaKelDescriptor* all = target.getDescriptor();
    KELVarCursor at;
    return all != nullptr && walk_of(all)->findVar(at, name) && at.value != nullptr
               ? dynamic_cast<MetaKelVarDescriptor*>(at.value)
               : nullptr;
}

inline bool is_described(const MetaKel& target, const char* name) {
    return description_of(target, name) != nullptr;
}

/// Returns the names of the described variables in ascending order.
inline std::vector<std::string> described_names(const MetaKel& target) {
    std::vector<std::string> found;
    if (MetaKelDescriptor* all = target.getDescriptor()) {
        for (const item& each : value(share(all)).items()) {
            if (is_described(target, each.name.c_str())) { // and not something else of a document
                found.push_back(each.name);
            }
        }
    }
    return found;
}

/// Returns why a variable without a description cannot be used.
inline std::string unknown_in(const MetaKel& target, const char* name, const std::string& path) {
    return path + (target.containsVar(name) ? ": is not described." : ": no such variable.");
}

/// Returns whether a document must have the variable, which the description states in a property of
/// kel.hpp's own. The library and the tool do not look at it.
inline bool is_required(const MetaKelVarDescriptor& rules) {
    KELVarCursor at;
    return walk_of(rules.getStruct())->findVar(at, "required") && at.value != nullptr &&
           at.value->toBoolean();
}

inline KEL* default_of(const MetaKel& source, const char* name) {
    const MetaKelVarDescriptor* rules = description_of(source, name);
    return rules == nullptr ? nullptr : rules->getDefault();
}

/// Returns whether a description allows only numbers at whole steps from the least one, or from 0.
/// The library allows those in between too.
inline bool has_only_steps(const MetaKelVarDescriptor& rules) {
    return !rules.isEnumerated() && !rules.getInterpolated() && rules.hasStepsize() &&
           rules.getStepsize() > 0;
}

/// Returns whether a number is at a step, or as near to one as the decimals of text leave it.
inline bool is_at_step(const MetaKelVarDescriptor& rules, double number) {
    constexpr double tolerance = 1e-3; // of a step
    const double first = rules.isRanged() ? least_of(rules) : 0;
    const double steps = (number - first) / rules.getStepsize();
    return std::abs(steps - std::round(steps)) < tolerance;
}

/// Returns the number of digits after the point, or more than any step needs for a tiny number.
inline int decimals_of(double number) {
    const std::string text = shortest(number);
    const std::size_t point = text.find('.');
    return text.find('e') != std::string::npos ? INT_MAX
           : point == std::string::npos        ? 0
                                               : static_cast<int>(text.size() - point - 1);
}

/// Returns a number as a person reads it, with at most 15 digits. One at a step has no more
/// decimals than the steps have: 0.05 and not 0.05000000000000001.
inline std::string number_text(const MetaKelVarDescriptor& rules, double number) {
    constexpr int most = 9; // more are those of a fraction such as 1/3
    constexpr double beyond = 1e15;
    double first = 0;
    KEL* least = rules.isRanged() ? call([&] { return rules.getMin(); }) : nullptr;
    const bool has_steps =
        rules.hasStepsize() && rules.getStepsize() > 0 &&
        (!rules.isRanged() || (least != nullptr && read(*least, first) == reading::done));
    if (!has_steps || !(std::abs(number) < beyond) || !is_at_step(rules, number)) {
        return shortest(with_kept_digits(number));
    }
    const int decimals = (std::max)(decimals_of(rules.getStepsize()), decimals_of(first));
    return shortest(decimals > most ? with_kept_digits(number) : rounded(number, decimals));
}

/// Returns a value with the texts before and after it.
inline std::string adorned_text(const MetaKelVarDescriptor& rules, KEL* object) {
    return text_of(rules.getPreadorn()) +
           (type_of(object) == KELKind_Double ? number_text(rules, object->toDouble())
                                              : plain_text(object)) +
           text_of(rules.getPostadorn());
}

/// Returns words for the values of a list of choices.
inline std::string one_of_words(const value& choices) {
    std::string list;
    if (choices) {
        for (const value& each : choices.elements()) {
            list += (list.empty() ? "one of " : ", ") + shown(each.raw());
        }
    }
    return list.empty() ? "nothing" : list;
}

/// Returns words for all values of a kind, which 0 leaves open.
inline std::string any_words(std::int32_t type) {
    return type == 0                 ? "any value"
           : type == KELKind_Int     ? "any whole number"
           : type == KELKind_Double  ? "any number"
           : type == KELKind_Boolean ? "true or false"
                                     : words(static_cast<kind>(type));
}

/// Says what a description allows, with the unit of numbers: "from -60 to 6 dB", or
/// "one of "mono", "stereo"".
inline std::string allowed_by(const MetaKelVarDescriptor& rules) {
    const std::int32_t type = rules.getVariableType();
    const bool is_numeric = type == KELKind_Int || type == KELKind_Double;
    const std::string after = is_numeric ? text_of(rules.getPostadorn()) : "";
    if (!rules.isRanged() && rules.isEnumerated()) {
        return one_of_words(find_choices(rules)) + after;
    }
    const std::string numbers =
        rules.isRanged() ? "from " + shown(call([&] { return rules.getMin(); })) + " to " +
                               shown(call([&] { return rules.getMax(); })) + after
        : type == KELKind_String ? allowed_lengths(rules)
                                 : any_words(type);
    return numbers +
           (has_only_steps(rules) ? " in steps of " + shortest(rules.getStepsize()) + after : "");
}

/// Adds what is allowed to a reason, which ends with a period.
inline std::string with_words(std::string reason, const std::string& allowed) {
    return reason.replace(reason.size() - 1, 1, "; allowed is " + allowed + '.');
}

/// Adds what the description allows to a reason, unless it allows every number or text.
inline std::string with_allowed(const MetaKelVarDescriptor& rules, std::string reason) {
    if (rules.isRanged() || rules.isEnumerated() || has_only_steps(rules) || limits_length(rules) ||
        rules.getVariableType() == KELKind_Boolean) {
        return with_words(std::move(reason), allowed_by(rules));
    }
    return reason;
}

/// Returns why a variable of a kind cannot have a value, or nothing if it can. Int and Double
/// convert if nothing is lost.
inline std::string why_not_kind(std::int32_t wanted, const std::string& path, KEL* content) {
    const std::int32_t found = type_of(content);
    const auto is_numeric = [](std::int32_t t) { return t == KELKind_Int || t == KELKind_Double; };
    if (found != wanted && !(is_numeric(wanted) && is_numeric(found))) {
        return lead(path) + "wanted " +
               (wanted == KELKind_Double ? "a number" : words(static_cast<kind>(wanted))) +
               ", found " + words(static_cast<kind>(found)) + ".";
    }
    std::int32_t whole = 0;
    if (wanted == KELKind_Int && read(*content, whole) != reading::done) {
        const double number = content->toDouble();
        return lead(path) + shown(content) +
               (std::trunc(number) != number ? " is not a whole number."
                : number > 0                 ? " is too large."
                                             : " is too small.");
    }
    return {};
}

/// Returns why a described variable cannot have a value, or nothing if it can.
inline std::string why_not(const MetaKelVarDescriptor& rules, const std::string& path,
                           KEL* content) {
    const std::int32_t wanted = rules.getVariableType();
    std::string reason = wanted == 0 ? std::string() : why_not_kind(wanted, path, content);
    double number = 0;
    if (reason.empty() && (!call([&] {
            return rules.isValid(content);
        }) || (has_only_steps(rules) && content != nullptr &&
               read(*content, number) == reading::done && !is_at_step(rules, number)))) {
        reason = lead(path) + shown(content) + " is not allowed.";
    }
    if (reason.empty() && type_of(content) == KELKind_String) {
        const std::string length = refused_length(rules, content->toString());
        reason = length.empty() ? length : lead(path) + length + " is not allowed.";
    }
    return reason.empty() ? reason : with_allowed(rules, std::move(reason));
}

} // namespace detail
} // namespace v1
} // namespace kel
