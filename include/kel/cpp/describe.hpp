/// \file
/// describe: the description of one variable of a checked struct.
#pragma once

#include <kel/cpp/range.hpp>

#include <initializer_list>

namespace kel {
inline namespace v1 {

namespace detail {

/// Returns the content as the described type, if that is the same.
/// \throws std::out_of_range for a number that the type does not hold
template <class T, class Content> T exactly(const Content& content) {
    if constexpr (is_number<T>) {
        static_assert(is_number<Content>, "kel: a described number takes numbers.");
        if constexpr (std::is_integral_v<T>) {
            const std::int32_t number = whole_of(content);
            if (static_cast<std::int64_t>(static_cast<T>(number)) != number) {
                throw std::out_of_range(digits_of(content) + " does not fit the described type.");
            }
            return static_cast<T>(number);
        } else {
            return static_cast<T>(double_of(content));
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        static_assert(std::is_same_v<Content, bool>, "kel: a described bool takes a bool.");
        return content;
    } else {
        static_assert(std::is_constructible_v<std::string, const Content&>,
                      "kel: a described text takes a text.");
        return std::string(content);
    }
}

/// Returns a bound of a range, which another program can have described.
/// \throws type_error for something else than a number
inline double bound_of(KEL* bound) {
    double number = 0;
    if (bound == nullptr || read(*bound, number) != reading::done) {
        raise_wrong_kind("the bound of a range", words(kind::real), bound);
    }
    return number;
}

/// Returns the list of allowed values.
/// \throws type_error if it is none
inline value choices_of(const MetaKelVarDescriptor& rules) {
    return call([&] {
        KEL_Array* list =
            array_of(find_variable(*walk_of(rules.getStruct()), rules.getStruct(), "enum").object);
        if (list == nullptr) {
            raise_wrong_kind("the allowed values", words(kind::array), nullptr);
        }
        return value(share(list));
    });
}

} // namespace detail

/// The description of a variable: its kind, what it allows, its default, and how to show it.
class variable_description {
public:
    /// Takes a descriptor of the library, for example one that was read from a file.
    /// \throws type_error for null
    explicit variable_description(ref<MetaKelVarDescriptor> raw) : raw_(std::move(raw)) {
        if (!raw_) {
            detail::raise_wrong_kind({}, words(kind::variable_descriptor), nullptr);
        }
    }

    MetaKelVarDescriptor* raw() const noexcept { return raw_.get(); }
    operator value() const { return value(raw_); }

protected:
    /// Sets a property to a new value.
    void put(const char* property, const value& content) {
        detail::call([&] { raw_->addVar(property, content.raw()); });
    }

    ref<MetaKelVarDescriptor> raw_;
};

/// Builds the description of a variable of a C++ type:
///
///     auto gain = kel::describe<double>().range(-60, 6).fallback(0).step(0.5).unit(" dB");
template <class T> class typed_description : public variable_description {
    static_assert(std::is_same_v<T, bool> || detail::is_number<T> || std::is_same_v<T, std::string>,
                  "kel: describe<bool>, describe of a number type, or describe<std::string>.");

public:
    typed_description() : variable_description(adopt_made(CreateMetaKelVarDescriptor())) {
        detail::call([this] { raw_->setType(stored(T()).raw()->getType()); });
    }
    /// Makes another description with the same properties, to be changed on its own.
    typed_description(const typed_description& other)
        : variable_description(value(other).copy().template as<MetaKelVarDescriptor>()) {}
    typed_description(typed_description&&) noexcept = default;
    typed_description& operator=(typed_description other) noexcept {
        raw_ = std::move(other.raw_);
        return *this;
    }
    ~typed_description() = default;

    /// Allows the numbers from least to greatest, both included.
    /// \throws error if least is greater than greatest, or one is not a number
    /// \throws std::out_of_range for a number that the type does not hold
    template <class Least, class Greatest>
    typed_description& range(const Least& least, const Greatest& greatest) & {
        static_assert(detail::is_number<T>, "kel: only numbers have a range.");
        const T from = detail::exactly<T>(least);
        const T to = detail::exactly<T>(greatest);
        if (!(from <= to)) {
            throw error("A range begins with its least number.");
        }
        put("min", stored(from));
        put("max", stored(to));
        return *this;
    }
    /// Allows these values only.
    typed_description& one_of(std::initializer_list<T> allowed) & {
        value list = array();
        for (const T& each : allowed) {
            list.push_back(stored(each));
        }
        put("enum", list);
        return *this;
    }
    /// Sets the value of the variable while it has none. Whether it is allowed is checked when the
    /// description is used.
    template <class Content> typed_description& fallback(const Content& content) & {
        put("default", stored(detail::exactly<T>(content)));
        return *this;
    }
    /// Sets the distance between neighbours. It is used by set_normalised and step_by of
    /// kel::checked; other values within the range remain allowed.
    typed_description& step(double distance) & {
        static_assert(detail::is_number<T>, "kel: only numbers have a step.");
        if (!(distance > 0)) {
            throw error("A step is greater than 0.");
        }
        detail::call([&] { raw_->setStepsize(distance); });
        return *this;
    }
    /// Sets the text after the value, such as " dB", or before it.
    typed_description& unit(const detail::text& after) & {
        put("postadorn", value(after.c_str()));
        return *this;
    }
    typed_description& prefix(const detail::text& before) & {
        put("preadorn", value(before.c_str()));
        return *this;
    }
    /// Says that stepping beyond one end goes on at the other.
    typed_description& wraps(bool does = true) & {
        detail::call([&] { raw_->setWrapped(does); });
        return *this;
    }
    /// Says whether values between two steps make sense.
    typed_description& interpolated(bool is) & {
        detail::call([&] { raw_->setInterpolated(is); });
        return *this;
    }

    // The same for a temporary one, which they return by value.
    template <class Least, class Greatest>
    typed_description range(const Least& least, const Greatest& greatest) && {
        return std::move(range(least, greatest));
    }
    template <class Content> typed_description fallback(const Content& content) && {
        return std::move(fallback(content));
    }
    typed_description one_of(std::initializer_list<T> a) && { return std::move(one_of(a)); }
    typed_description step(double a) && { return std::move(step(a)); }
    typed_description unit(const detail::text& a) && { return std::move(unit(a)); }
    typed_description prefix(const detail::text& a) && { return std::move(prefix(a)); }
    typed_description wraps(bool a = true) && { return std::move(wraps(a)); }
    typed_description interpolated(bool a) && { return std::move(interpolated(a)); }

private:
    static value stored(const T& content) { return value(content); }
};

/// Returns an empty description, to be completed by its operations.
template <class T> typed_description<T> describe() {
    return typed_description<T>();
}

namespace detail {

/// Returns a number without the last digits that a sum of numbers up to the greatest one can have
/// wrong: 603 steps of 0.1 from -60 are 0.3, not 0.30000000000000426.
inline double without_noise(double number, double greatest) {
    constexpr double most = 1e15; // beyond, every digit is before the point
    if (!(greatest < most)) {
        return number;
    }
    const int decimals = 14 - static_cast<int>(std::ceil(std::log10((std::max)(greatest, 1e-3))));
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed,
                                   (std::max)(decimals, 0));
    double rounded = number;
    std::from_chars(digits, end.ptr, rounded);
    return rounded;
}

/// Returns a value for a message: numbers in their shortest form, text in quotes.
inline std::string shown(KEL* object) {
    const std::int32_t type = type_of(object);
    if (type == KELKind_Double) {
        return shortest(object->toDouble());
    }
    const char* characters = type == 0 ? nullptr : object->toString();
    if (characters == nullptr) {
        return words(static_cast<kind>(type));
    }
    return type == KELKind_String ? '"' + std::string(characters) + '"' : characters;
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

inline KEL* default_of(const MetaKel& source, const char* name) {
    const MetaKelVarDescriptor* rules = description_of(source, name);
    return rules == nullptr ? nullptr : rules->getDefault();
}

/// Says what a description allows: "from -60 to 6", or "one of "mono", "stereo"".
inline std::string allowed_by(const MetaKelVarDescriptor& rules) {
    if (rules.isRanged()) {
        return "from " + shown(call([&] { return rules.getMin(); })) + " to " +
               shown(call([&] { return rules.getMax(); }));
    }
    std::string choices = "one of ";
    for (const value& each : choices_of(rules).elements()) {
        choices += (choices.size() > 7 ? ", " : "") + shown(each.raw());
    }
    return choices;
}

/// Returns why a described variable cannot have a value, or nothing if it can.
inline std::string why_not(const MetaKelVarDescriptor& rules, const std::string& path,
                           KEL* content) {
    const std::int32_t wanted = rules.getVariableType();
    const std::int32_t found = type_of(content);
    const auto is_numeric = [](std::int32_t t) { return t == KELKind_Int || t == KELKind_Double; };
    if (wanted != 0 && found != wanted && !(is_numeric(wanted) && is_numeric(found))) {
        return path + ": wanted " + words(static_cast<kind>(wanted)) + ", found " +
               words(static_cast<kind>(found)) + ".";
    }
    std::int32_t whole = 0;
    if (wanted == KELKind_Int && read(*content, whole) != reading::done) {
        return path + ": " + shown(content) + " is not a whole number of 32 bits.";
    }
    if (!call([&] { return rules.isValid(content); })) {
        return path + ": " + shown(content) + " is not allowed; allowed is " + allowed_by(rules) +
               '.';
    }
    return {};
}

inline void require_allowed(const MetaKel& target, const char* name, KEL* content) {
    const MetaKelVarDescriptor* rules = description_of(target, name);
    const std::string reason =
        rules == nullptr || content == nullptr ? std::string() : why_not(*rules, name, content);
    if (!reason.empty()) {
        throw not_allowed(reason);
    }
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

inline void store_checked(MetaKel& target, const char* name, KEL* content) {
    refuse_reserved(name);
    if (content == nullptr) {
        if (target.containsVar(name)) {
            target.clearVar(name);
        }
        return;
    }
    require_allowed(target, name, content);
    const MetaKelVarDescriptor* rules = description_of(target, name);
    const bool is_shared = rules == nullptr && is_container(content);
    const value stored = is_shared          ? value(share(content))
                         : rules == nullptr ? value(share(content)).copy()
                                            : made_for(*rules, content);
    KELVarCursor at;
    const bool is_changed_in_place = rules != nullptr && walk_of(&target)->findVar(at, name) &&
                                     type_of(at.value) == type_of(stored.raw());
    if (is_changed_in_place) {
        target.setVarValue(name, stored.raw()); // so that whoever watches the variable is called
    } else {
        target.setVar(name, stored.raw());
    }
}

} // namespace detail
} // namespace v1
} // namespace kel
