/// \file
/// checked: a handle to a checked struct, which stores only what its description allows.
#pragma once

#include <kel/cpp/describe.hpp>
#include <kel/cpp/scale.hpp>
#include <kel/cpp/typed_text.hpp>

namespace kel {
inline namespace v1 {

/// A variable for kel::checked.
struct described {
    std::string_view name;      ///< of the variable
    variable_description rules; ///< what it allows; shared
};

/// Whether a value was stored, and if not, why.
class [[nodiscard]] outcome {
public:
    outcome() = default;
    /// Makes one that states why nothing was stored.
    explicit outcome(std::string reason) : reason_(std::move(reason)) {}

    /// Returns true if the value was stored.
    explicit operator bool() const noexcept { return reason_.empty(); }
    /// Returns the reason, which says what is allowed. Empty if the value was stored.
    const std::string& message() const noexcept { return reason_; }

private:
    std::string reason_;
};

/// Holds one reference to a checked struct.
///
///     auto gain = kel::describe<double>().range(-60, 6).fallback(0).unit(" dB");
///     kel::checked panel({{"gain", gain}});
///     if (auto done = panel.try_set("gain", 9.0); !done) { puts(done.message().c_str()); }
///
/// A variable has its default until it is set. What is stored is always a new value of the
/// described kind, never one that belongs to the description.
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
    /// Makes one from a container of pairs of names and descriptions, such as a
    /// std::map<std::string, kel::variable_description>.
    template <class Container,
              class = decltype(std::declval<detail::element_of<Container>>().second)>
    explicit checked(const Container& variables, const guid& identity = {}) {
        const ref<MetaKelDescriptor> all = descriptor(identity);
        for (const auto& [name, rules] : variables) {
            add(*all, name, rules);
        }
        raw_ = adopt_made(CreateMetaKel(all.get()));
    }
    /// Takes a checked struct that exists, for example one that was read from a file.
    /// \throws type_error for another kind
    explicit checked(const value& source) : raw_(source.as<MetaKel>()) {
        if (!raw_) {
            detail::raise_wrong_kind({}, words(kel::kind::checked), source.raw());
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

    /// Returns the variable or its default as a C++ type.
    /// \throws not_found if the variable has neither, type_error, range_error
    template <class T> T get(const detail::text& name) const {
        const value self = *this;
        return self[name.c_str()].template get<T>();
    }

    /// Stores a value if the variable is described and allows it.
    outcome try_set(const detail::text& name, const value& content) {
        return outcome(detail::try_store(target(), name.c_str(), name.c_str(), content.raw()));
    }
    /// An integer of more than 32 bits is stored as a Double if the description allows that.
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    outcome try_set(const detail::text& name, Integer number) {
        const auto path = [&name] { return std::string(name.c_str()); };
        return try_set(name, detail::value_for(number, true, path));
    }
    /// Does the same, but throws the reason.
    /// \throws not_allowed with the reason
    void set(const detail::text& name, const value& content) { require(try_set(name, content)); }
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    void set(const detail::text& name, Integer number) {
        require(try_set(name, number));
    }
    /// Stores the value that a person typed, as text returns and shows it: a number with or without
    /// its unit, a choice, true or false. The whole text must be a value: "12x" is refused. Numbers
    /// have a decimal point in every locale.
    outcome try_set_text(const detail::text& name, std::string_view typed) {
        const MetaKelVarDescriptor* rules = detail::description_of(target(), name.c_str());
        std::string reason;
        const value content =
            rules == nullptr ? value() : detail::read_typed(*rules, name.c_str(), typed, reason);
        return reason.empty() ? try_set(name, content) : outcome(reason);
    }
    /// Stores what fits of a document, and returns what does not, as value::merge does.
    [[nodiscard]] std::vector<mismatch> merge(const value& source);
    /// Returns a plain struct of copies of all described variables, defaults included, for instance
    /// as a preset that merge takes over again. Variables that have neither a value nor a default
    /// are left out.
    value values() const {
        value plain = object();
        for (const std::string& name : names()) {
            if (const value content = value_or_default(name)) {
                plain.set(name, content.copy());
            }
        }
        return plain;
    }
    /// Removes the variable, so that it has its default again.
    void reset(const detail::text& name) { value(*this).erase(name); }

    /// Returns where the variable is between its ends: 0 for the least number or first choice, 1
    /// for the greatest or last one.
    /// \throws error for a variable that has neither a range nor choices
    double normalised(const detail::text& name) const {
        const detail::scale ends(rules_of(name), name);
        return ends.from(current(name));
    }
    /// Stores the number or choice at this place. A number is rounded to the nearest step, if the
    /// description states a step or forbids values in between. A place outside of 0 to 1 is moved
    /// to the nearer end or, if the variable wraps, by whole turns.
    /// \throws std::out_of_range for a place that is not a number
    void set_normalised(const detail::text& name, double place) {
        if (std::isnan(place)) {
            throw std::out_of_range("A place between two ends is a number.");
        }
        const MetaKelVarDescriptor& rules = rules_of(name);
        const detail::scale ends(rules, name);
        if (rules.getWrapped() && (place < 0 || place > 1)) {
            place -= std::floor(place);
        }
        set(name, ends.at((std::min)(1.0, (std::max)(0.0, place))));
    }
    /// Moves the variable by a number of steps or choices, up or down. It stops at the ends or, if
    /// the variable wraps, goes on at the other end. One step beyond the greatest of whole numbers
    /// is the least one. Both ends of other numbers are the same place, like 0 and 360 degrees.
    void step_by(const detail::text& name, int steps) {
        const MetaKelVarDescriptor& rules = rules_of(name);
        const detail::scale ends(rules, name);
        set(name, ends.after(current(name), steps, rules.getWrapped()));
    }
    /// Returns the value with the texts before and after it, to be shown: "-6.5 dB".
    std::string text(const detail::text& name) const {
        const MetaKelVarDescriptor& rules = rules_of(name);
        const value content = current(name);
        return detail::text_of(rules.getPreadorn()) + detail::plain_text(content.raw()) +
               detail::text_of(rules.getPostadorn());
    }
    /// Returns the names of the described variables in ascending order.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        if (MetaKelDescriptor* all = target().getDescriptor()) {
            for (const item& each : value(share(all)).items()) {
                found.push_back(each.name);
            }
        }
        return found;
    }
    /// Returns the description of a variable.
    /// \throws not_found for a variable that is not described
    variable_description description(const detail::text& name) const {
        return variable_description(share(&rules_of(name)));
    }

private:
    static void require(const outcome& done) {
        if (!done) {
            throw not_allowed(done.message());
        }
    }
    static ref<MetaKelDescriptor> descriptor(const guid& identity) {
        return detail::make(KELKind_MetaKelDescriptor, identity).as<MetaKelDescriptor>();
    }
    static void add(MetaKelDescriptor& all, const detail::text& name,
                    const variable_description& described) {
        const MetaKelVarDescriptor& rules = *described.raw();
        if (KEL* fallback = rules.getDefault()) {
            const std::string reason = detail::why_not(rules, name.c_str(), fallback);
            if (!reason.empty()) {
                throw not_allowed("The default of " + reason);
            }
        }
        const char* stored = detail::checked_name(name);
        detail::refuse_reserved(stored);
        detail::call([&] { all.addVar(stored, described.raw()); });
    }
    MetaKelVarDescriptor& rules_of(const detail::text& name) const {
        MetaKelVarDescriptor* rules = detail::description_of(target(), name.c_str());
        if (rules == nullptr) {
            throw not_found(std::string(name.c_str()) + " is not described.");
        }
        return *rules;
    }
    /// Returns the variable, or its default if it is missing or null.
    value current(const detail::text& name) const {
        value used = value_or_default(name);
        if (!used) {
            throw not_found(std::string(name.c_str()) + ": has neither a value nor a default.");
        }
        return used;
    }
    value value_or_default(const detail::text& name) const {
        const value stored = value(*this).find(name);
        return stored ? stored : value(share(rules_of(name).getDefault()));
    }
    MetaKel& target() const {
        if (!raw_) {
            detail::raise_wrong_kind({}, words(kel::kind::checked), nullptr);
        }
        return *raw_;
    }

    ref<MetaKel> raw_;
};

} // namespace v1
} // namespace kel
