/// \file
/// Storing what the description of a variable allows.
#pragma once

#include <kel/cpp/as_written.hpp>
#include <kel/cpp/scale.hpp>

#include <limits>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns whether a number is another one, or what text makes of that.
/// \param decimals how much text can lose when it is written: it keeps six decimals
inline bool is_from_text(double number, double exact, double decimals = 5e-7) {
    constexpr double ulps = 16 * std::numeric_limits<double>::epsilon(); // reading adds decimals up
    return std::abs(number - exact) <= decimals + ulps * std::abs(exact);
}

/// Returns whether text makes a number of an exact one. A number is made of itself.
inline bool is_text_of(double number, double exact) {
    constexpr int decimals_of_text = 6;
    return is_from_text(number, exact, 0) ||
           (std::abs(exact) < beyond_text &&
            is_from_text(number, rounded(exact, decimals_of_text), 0));
}

/// Returns the end of the range, the choice or, if there are only steps, the step that text has
/// changed into this number, or the number itself. A number within the range is another one unless
/// only its last digits differ.
inline double unchanged_by_text(const MetaKelVarDescriptor& rules, double number) {
    bool is_inside = true;
    if (rules.isRanged()) {
        double ends[2] = {};
        KEL* bounds[2] = {rules.getMin(), rules.getMax()};
        for (int i = 0; i < 2; ++i) {
            if (bounds[i] == nullptr || read(*bounds[i], ends[i]) != reading::done) {
                return number; // a description of another program
            }
        }
        is_inside = ends[0] <= number && number <= ends[1];
        const double nearer =
            std::abs(number - ends[0]) < std::abs(number - ends[1]) ? ends[0] : ends[1];
        if (is_inside ? is_from_text(number, nearer, 0) : is_from_text(number, nearer)) {
            return nearer;
        }
    }
    const bool can_be_step = is_inside && has_only_steps(rules) && std::isfinite(number);
    if (can_be_step && is_at_step(rules, number)) {
        return nearest_step(rules, number);
    }
    double nearest = number;
    double distance = std::numeric_limits<double>::infinity();
    const value choices = rules.isEnumerated() ? find_choices(rules) : value();
    for (std::int32_t i = 0; choices && i < array_of(choices.raw())->getCount(); ++i) {
        double choice = 0;
        if (read(*array_of(choices.raw())->getVar(i), choice) == reading::done &&
            is_from_text(number, choice) && std::abs(number - choice) < distance) {
            nearest = choice;
            distance = std::abs(number - choice);
        }
    }
    return nearest;
}

/// Returns the value to check and to store in place of a value: the end of a range, the choice or
/// the step that text has changed into it, or the value itself.
inline value unchanged_by_text(const MetaKelVarDescriptor& rules, KEL* content) {
    double number = 0;
    if (content != nullptr && type_of(content) == KELKind_Double &&
        rules.getVariableType() == KELKind_Double && read(*content, number) == reading::done) {
        const double exact = call([&] { return unchanged_by_text(rules, number); });
        if (exact != number && std::isfinite(number)) {
            return value(exact);
        }
    }
    return value(share(content));
}

/// Returns the value to check and to store in place of a value of a document. It is also the
/// present value, the default or the step that text has changed into it, or the decimal number that
/// reading has changed.
/// \param present the value of the variable; null if the result must depend on the document alone
inline value unchanged_in_document(const MetaKelVarDescriptor& rules, KEL* content, KEL* present) {
    value exact = unchanged_by_text(rules, content);
    double number = 0;
    if (!exact || type_of(exact.raw()) != KELKind_Double ||
        rules.getVariableType() != KELKind_Double || rules.isEnumerated() ||
        exact.raw() != content || read(*content, number) != reading::done ||
        !std::isfinite(number)) {
        return exact;
    }
    for (KEL* each : {present, call([&] { return rules.getDefault(); })}) {
        double before = 0;
        if (each != nullptr && read(*each, before) == reading::done && is_text_of(number, before)) {
            return value(before);
        }
    }
    if (rules.hasStepsize() && rules.getStepsize() > 0) {
        const double step = call([&] { return nearest_step(rules, number); });
        if (is_text_of(number, step)) {
            return value(step);
        }
    }
    const double written = as_written(number);
    return written == number ? exact
                             : value(call([&] { return unchanged_by_text(rules, written); }));
}

inline void require_allowed(const MetaKel& target, const char* name, const std::string& path,
                            KEL* content) {
    const MetaKelVarDescriptor* rules = description_of(target, name);
    const std::string reason =
        rules == nullptr || content == nullptr ? std::string() : why_not(*rules, path, content);
    if (!reason.empty()) {
        throw not_allowed(reason);
    }
}

inline value allowed_or_throw(const MetaKel& target, const char* name, const std::string& path,
                              const value& content) {
    const MetaKelVarDescriptor* rules = description_of(target, name);
    value exact = rules == nullptr ? content : unchanged_by_text(*rules, content.raw());
    require_allowed(target, name, path, exact.raw());
    return exact;
}

inline bool is_container(KEL* object) {
    const KELKindFacts* facts = findKELKind(type_of(object));
    return facts != nullptr && facts->isContainer;
}

/// Returns the value to store for a described variable: a new one of the described kind. The
/// caller's can be the description's own, which serves other structs too.
inline value made_for(const MetaKelVarDescriptor& rules, KEL* content) {
    if (rules.getVariableType() == KELKind_Double) {
        return value(content->toDouble());
    }
    if (rules.getVariableType() == KELKind_Int) {
        return value(whole_of(content->toDouble()));
    }
    return value(share(content)).copy();
}

inline void refuse_reserved(const char* name) {
    if (*name == '@') {
        throw name_error("The names of a checked struct that begin with @ are reserved.");
    }
}

inline void clear_checked(value& target) {
    for (const item& each : target.items()) {
        if (each.name.front() != '@') {
            target.erase(each.name);
        }
    }
}

/// Makes a described variable hold an allowed value. One that exists is changed in place, so that
/// whoever watches it is called.
inline void store_allowed(MetaKel& target, const char* name, const MetaKelVarDescriptor& rules,
                          KEL* content) {
    const value stored = made_for(rules, content);
    KELVarCursor at;
    if (walk_of(&target)->findVar(at, name) && type_of(at.value) == type_of(stored.raw())) {
        target.setVarValue(name, stored.raw());
    } else {
        target.setVar(name, stored.raw());
    }
}

inline void clear_variable(MetaKel& target, const char* name) {
    if (target.containsVar(name)) {
        target.clearVar(name);
    }
}

/// Removes a described variable, so that its default is in effect. The variable gets the default
/// in place before that, for those who watch it.
inline void return_to_default(MetaKel& target, const char* name) {
    KEL* fallback = default_of(target, name);
    KELVarCursor at;
    const bool is_stored = walk_of(&target)->findVar(at, name) && at.value != nullptr;
    if (is_stored && fallback != nullptr && value(share(at.value)) != value(share(fallback))) {
        call([&] { store_allowed(target, name, *description_of(target, name), fallback); });
    }
    if (target.containsVar(name)) { // which observers can have removed
        call([&] { target.removeVar(name); });
    }
}

/// Whose value is to be stored: that of the program, or that of a document, which can have been
/// saved as text. The result can depend on the document alone, or also on the present value.
enum class origin { program, document, document_alone };

/// Stores a value if the variable is described and allows it. Returns why not, or nothing.
/// \param path of the variable, for the reason
inline std::string try_store(MetaKel& target, const char* name, const std::string& path,
                             KEL* content, origin whose) {
    const MetaKelVarDescriptor* rules = description_of(target, name);
    if (rules == nullptr) {
        return unknown_in(target, name, path);
    }
    KELVarCursor at;
    const bool has_present = whose == origin::document && walk_of(&target)->findVar(at, name);
    const value exact =
        whose == origin::program
            ? unchanged_by_text(*rules, content)
            : unchanged_in_document(*rules, content, has_present ? at.value : nullptr);
    std::string reason = why_not(*rules, path, exact.raw());
    if (reason.empty()) {
        call([&] {
            exact ? store_allowed(target, name, *rules, exact.raw()) : clear_variable(target, name);
        });
    }
    return reason;
}

inline void store_checked(MetaKel& target, const char* name, const std::string& path,
                          KEL* content) {
    refuse_reserved(name);
    if (content == nullptr) {
        clear_variable(target, name);
    } else if (const MetaKelVarDescriptor* rules = description_of(target, name)) {
        const value exact = unchanged_by_text(*rules, content);
        const std::string reason = why_not(*rules, path, exact.raw());
        if (!reason.empty()) {
            throw not_allowed(reason);
        }
        store_allowed(target, name, *rules, exact.raw());
    } else {
        const value stored(share(content));
        target.setVar(name, is_container(content) ? content : stored.copy().raw());
    }
}

} // namespace detail
} // namespace v1
} // namespace kel
