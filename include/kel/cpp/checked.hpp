/// \file
/// checked: a handle to a checked struct, which stores only what its description allows.
#pragma once

#include <kel/cpp/described_variable.hpp>

namespace kel {
inline namespace v1 {

/// A variable for kel::checked.
struct described {
    std::string name;           ///< of the variable
    variable_description rules; ///< what it allows; shared
};

namespace detail {

/// Whether types are those of a name and a description.
template <class Name, class Rules>
inline constexpr bool is_named_by =
    std::is_convertible_v<Name, text>&& std::is_convertible_v<Rules, const variable_description&>;
/// Whether an element has a name and a description as members: kel::described, or a type of the
/// program's own.
template <class T, class = void> inline constexpr bool has_name_and_rules = false;
template <class T>
inline constexpr bool has_name_and_rules<T, std::void_t<decltype(std::declval<const T&>().name),
                                                        decltype(std::declval<const T&>().rules)>> =
    is_named_by<decltype((std::declval<const T&>().name)),
                decltype((std::declval<const T&>().rules))>;
/// Whether an element is a pair of a name and a description.
template <class T, class = void> inline constexpr bool is_named_description = false;
template <class T>
inline constexpr bool
    is_named_description<T, std::void_t<decltype(std::declval<const T&>().first),
                                        decltype(std::declval<const T&>().second)>> =
        is_named_by<decltype((std::declval<const T&>().first)),
                    decltype((std::declval<const T&>().second))>;

/// The kinds of containers that can be given for a checked struct.
enum class table { of_descriptions, of_anything_else, none };
template <class Container, class = void> inline constexpr table table_of = table::none;
template <class Container>
inline constexpr table table_of<
    Container, std::enable_if_t<!std::is_void_v<element_of<Container>> &&
                                !std::is_convertible_v<const Container&, std::string_view>>> =
    has_name_and_rules<element_of<Container>> || is_named_description<element_of<Container>>
        ? table::of_descriptions
        : table::of_anything_else;

} // namespace detail

/// Holds one reference to a checked struct.
///
///     auto gain = kel::describe<double>().range(-60, 6).fallback(0).unit(" dB");
///     kel::checked panel({{"gain", gain}});
///     if (auto done = panel.try_set("gain", 9.0); !done) { puts(done.message().c_str()); }
///
/// A variable has its default until it is set. It always stores a new value of the described kind,
/// never one that belongs to the description.
class checked {
public:
    /// Makes a checked struct. The descriptions are shared: one can serve many structs.
    /// \param identity of the description as a whole, which text files show; all zero draws one
    /// \throws name_error for a name that a variable cannot have
    /// \throws not_allowed for a default that its own description does not allow
    checked(std::initializer_list<described> variables, const guid& identity = {}) {
        const ref<MetaKelDescriptor> all = descriptor(identity);
        for (const described& each : variables) {
            add(*all, each.name, each.rules);
        }
        raw_ = adopt_made(CreateMetaKel(all.get()));
    }
    /// Makes one from a container whose elements have the members name and rules, whatever else
    /// they have, such as a table of the program's own or a std::vector<kel::described>. Pairs of
    /// names and descriptions serve too, as in a std::map<std::string, kel::variable_description>.
    /// It fails in the same way.
    template <
        class Container,
        std::enable_if_t<detail::table_of<Container> == detail::table::of_descriptions, int> = 0>
    checked(const Container& variables, const guid& identity = {}) {
        using Element = detail::element_of<Container>;
        const ref<MetaKelDescriptor> all = descriptor(identity);
        for (const Element& each : variables) {
            if constexpr (detail::has_name_and_rules<Element>) {
                add(*all, each.name, each.rules);
            } else {
                add(*all, each.first, each.second);
            }
        }
        raw_ = adopt_made(CreateMetaKel(all.get()));
    }
    /// Does not compile. It says what the elements need.
    template <
        class Container,
        std::enable_if_t<detail::table_of<Container> == detail::table::of_anything_else, int> = 0>
    explicit checked(const Container&, const guid& = {}) {
        static_assert(detail::never<Container>,
                      "kel: a checked struct is made from elements with a name and with rules: "
                      "struct control { std::string name; kel::variable_description rules; };");
    }
    /// Takes a checked struct that exists, for example one that was read from a file.
    /// \throws type_error for another kind
    explicit checked(const value& source) : raw_(source.as<MetaKel>()) {
        if (!raw_) {
            detail::raise_wrong_kind({}, words(kel::kind::checked), source.raw());
        }
    }

    /// Takes the checked struct at a place, as kel::value does: kel::checked one = root["1"];
    /// \throws type_error, with the path, for another kind
    /// \throws not_found, with the path, for an unknown variable or element
    checked(const_place&& source) {
        const value found = detail::find(source.at_).handle();
        raw_ = found.as<MetaKel>();
        if (!raw_) {
            detail::raise_wrong_kind(detail::path_of(source.at_), words(kel::kind::checked),
                                     found.raw());
        }
    }

    /// Returns the struct as its public class, borrowed, or as a handle.
    MetaKel* raw() const noexcept { return raw_.get(); }
    operator value() const { return value(raw_); }

    /// Return the place of a variable, for one expression, as value does.
    template <class Name> auto operator[](const Name& name) { return value(*this)[name]; }
    template <class Name> auto operator[](const Name& name) const {
        const value self = *this;
        return self[name];
    }

    /// Return the place at a path, as value does.
    auto at_path(std::string_view path) { return value(*this).at_path(path); }
    auto at_path(std::string_view path) const {
        const value self = *this;
        return self.at_path(path);
    }

    /// Return the same as the operations of value. contains does not count defaults, find does, and
    /// the items contain the description "@desc".
    bool contains(const detail::text& name) const { return value(*this).contains(name); }
    value find(const detail::text& name) const { return value(*this).find(name); }
    item_range items() const { return value(*this).items(); }

    /// Returns another checked struct with copies of the values and of the description.
    checked copy() const { return checked(value(*this).copy()); }

    /// Returns the variable or its default as a C++ type.
    /// \throws not_found if the variable has neither, type_error, range_error
    template <class T> T get(const detail::text& name) const {
        const value self = *this;
        return self[name.c_str()].template get<T>();
    }

    /// Stores a value if the variable is described and allows it. A Double that text cannot
    /// distinguish from an end of the range or from a choice is stored as that end or choice. A
    /// number within the range is stored as it is, unless only its last digits differ from an end.
    outcome try_set(const detail::text& name, const value& content) {
        return variable(name).try_set(content);
    }
    /// An integer of more than 32 bits is stored as a Double if the description allows that.
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    outcome try_set(const detail::text& name, Integer number) {
        return variable(name).try_set(number);
    }
    /// Returns why try_set would refuse a value, printable, or nothing if it would store it. Stores
    /// nothing.
    [[nodiscard]] std::string why_not(const detail::text& name, const value& content) const {
        return variable(name).why_not(content);
    }
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    [[nodiscard]] std::string why_not(const detail::text& name, Integer number) const {
        return variable(name).why_not(number);
    }
    /// Stores as try_set does, but throws the reason.
    /// \throws not_allowed with the reason
    void set(const detail::text& name, const value& content) { variable(name).set(content); }
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    void set(const detail::text& name, Integer number) {
        variable(name).set(number);
    }
    /// Stores the value that a person typed, as text returns and shows it: a number with or without
    /// its unit, a choice, or true, on, yes, 1, false, off, no or 0 for a truth value, in any case.
    /// The number that text shows leaves the variable as it is, apart from one within a thousandth
    /// of a step, which becomes that step. The whole text must be a value: "12x" is refused. Blanks
    /// at the ends do not count, except in a free text. Numbers have a decimal point in every
    /// locale.
    outcome try_set_text(const detail::text& name, std::string_view typed) {
        return variable(name).try_set_text(typed);
    }
    /// Does the same.
    /// \throws not_allowed, with the same message, for what is refused
    void set_text(const detail::text& name, std::string_view typed) {
        variable(name).set_text(typed);
    }
    /// Stores what fits of a document, and returns what does not, as value::merge does. With
    /// missing::reset, the values depend on the document alone, as when a preset is loaded.
    [[nodiscard]] std::vector<mismatch> merge(const value& source, missing rest = missing::keep);
    /// Makes everything as it was when copy gave the state, as value::restore does. Variables that
    /// had their default have it again, also if only that: is_default returns true.
    void restore(const value& state);
    /// Returns a plain struct of copies of all described variables, as value::values does.
    value values() const { return value(*this).values(); }
    /// Returns the same without the variables that have only their default.
    value stored_values() const { return value(*this).stored_values(); }
    /// Returns a mix of two presets, to be stored by merge: a plain struct of all described
    /// variables. At 0 they have the values of the first one and at 1 those of the second one,
    /// exactly. In between, variables with a range are between both numbers, rounded to steps as by
    /// set_normalised. A number that is the same in both remains that number. Choices, truth
    /// values, texts and numbers without a range are those of the nearer preset, which is the
    /// second one in the exact middle.
    ///
    /// A preset counts as merge with missing::reset stores it, so a variable that it lacks or has
    /// with a refused value has its default. One without a default that only one preset has is that
    /// of the nearer preset, so it can be missing. merge of the preset itself returns what is
    /// refused.
    ///
    ///     for (const kel::mismatch& each : panel.merge(panel.mixed(soft, loud, 0.25))) { ... }
    ///
    /// \param where is moved to the nearer end of 0 to 1
    /// \throws type_error unless both are structs
    /// \throws std::out_of_range for a place that is not a number
    [[nodiscard]] value mixed(const value& first, const value& second, double where) const;
    /// Removes the variable, so that it has its default again.
    /// \throws not_found for a variable that is not described
    void reset(const detail::text& name) { variable(name).reset(); }
    /// Returns whether the variable has its default because nothing is stored.
    /// \throws not_found for a variable that is not described
    bool is_default(const detail::text& name) const { return variable(name).is_default(); }
    /// Returns whether the variable has the value of its default, stored or not. For one without a
    /// default, returns whether it has no value.
    /// \throws not_found for a variable that is not described
    bool has_default_value(const detail::text& name) const {
        return variable(name).has_default_value();
    }
    /// Removes all described variables, so that they have their defaults again.
    void reset() {
        for (const std::string& name : names()) {
            reset(name);
        }
    }

    /// Returns whether normalised, set_normalised and step_by can be used: for a range, for choices
    /// and for a truth value. Returns false for a variable that is not described.
    bool has_scale(const detail::text& name) const { return variable(name).has_scale(); }
    /// Returns where the variable is between its ends: 0 for the least number, the first choice or
    /// false, 1 for the greatest number, the last choice or true. A value that is not allowed, such
    /// as one of a file, gives the nearer end; one that is not a number or choice gives 0.
    /// \throws error for a variable that has neither a range nor choices
    double normalised(const detail::text& name) const { return variable(name).normalised(); }
    /// Stores the number or choice at this place: at 0 and 1 exactly the ends. A number is rounded
    /// to the nearest step, if the description states a step or forbids values in between, so at 1
    /// it is the last step if that is before the end. A place outside of 0 to 1 is moved to the
    /// nearer end or, if the variable wraps, by whole turns.
    ///
    /// \throws std::out_of_range for a place that is not a number
    void set_normalised(const detail::text& name, double place) {
        variable(name).set_normalised(place);
    }
    /// Moves the variable by a number of steps or choices, up or down. From between two steps, the
    /// first one leads to the next step in that direction. Without a stated step it moves by 1. It
    /// stops at the ends or, if the variable wraps, goes on at the other end. One step beyond the
    /// greatest of whole numbers is the least one. Both ends of other numbers are the same place,
    /// like 0 and 360 degrees.
    void step_by(const detail::text& name, int steps) { variable(name).step_by(steps); }
    /// Returns the value with the texts before and after it, to be shown: "-6.5 dB". A number has
    /// at most 15 digits, and one at a step has no more decimals than the steps have.
    std::string text(const detail::text& name) const { return variable(name).text(); }
    /// Returns all choices as text returns each of them while it is chosen. A truth value has the
    /// choices false and true. Empty for a variable without such a list.
    /// \throws not_found for a variable that is not described
    /// \throws type_error if the description has something else than an array
    std::vector<std::string> choice_texts(const detail::text& name) const {
        return variable(name).choice_texts();
    }
    /// Returns what is allowed, in the words of the refusals, printable: "from -60 to 6 dB".
    /// \throws not_found for a variable that is not described
    std::string allowed_text(const detail::text& name) const {
        return description(name).allowed_text();
    }
    /// Returns whether a variable is described.
    bool describes(const detail::text& name) const {
        return detail::is_described(target(), name.c_str());
    }
    /// Returns the names of the described variables in ascending order.
    std::vector<std::string> names() const { return detail::described_names(target()); }
    /// Returns the description of a variable.
    /// \throws not_found for a variable that is not described
    variable_description description(const detail::text& name) const {
        return variable(name).description();
    }

private:
    static ref<MetaKelDescriptor> descriptor(const guid& identity) {
        return detail::make(KELKind_MetaKelDescriptor, identity).as<MetaKelDescriptor>();
    }
    static void add(MetaKelDescriptor& all, const detail::text& name,
                    const variable_description& described) {
        const MetaKelVarDescriptor& rules = *described.raw();
        if (KEL* fallback = rules.getDefault()) {
            const std::string reason =
                detail::why_not(rules, detail::path_to(name.c_str()), fallback);
            if (!reason.empty()) {
                throw not_allowed("The default of " + reason);
            }
        }
        const char* stored = detail::checked_name(name);
        detail::refuse_reserved(stored);
        detail::call([&] { all.addVar(stored, described.raw()); });
    }
    detail::described_variable variable(const detail::text& name) const {
        return {target(), name.c_str(), detail::path_to(name.c_str())};
    }
    MetaKel& target() const {
        if (!raw_) {
            detail::raise_wrong_kind({}, words(kel::kind::checked), nullptr);
        }
        return *raw_;
    }

    ref<MetaKel> raw_;
};

inline std::vector<std::string> value::names() const {
    return checked(*this).names();
}
inline std::vector<std::string> const_place::names() && {
    return checked(std::move(*this)).names();
}

} // namespace v1
} // namespace kel
