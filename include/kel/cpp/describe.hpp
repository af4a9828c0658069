/// \file
/// describe: the description of one variable of a checked struct.
#pragma once

#include <kel/cpp/rules.hpp>

namespace kel {
inline namespace v1 {

class checked;

namespace detail {

/// Returns a new value of the described type with this content, if it is the same. A described
/// float keeps the double that was given, so that 0.1 is shown as 0.1.
/// \throws std::out_of_range for a number that the type does not hold
template <class T, class Content> value described_value(const Content& content) {
    if constexpr (is_number<T>) {
        static_assert(is_number<Content>, "kel: a described number takes numbers.");
        if constexpr (std::is_integral_v<T>) {
            const std::int32_t number = whole_of(content);
            if (static_cast<std::int64_t>(static_cast<T>(number)) != number) {
                throw std::out_of_range(digits_of(content) + " does not fit the described type.");
            }
            return value(number);
        } else {
            return value(double_of(content));
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        static_assert(std::is_same_v<Content, bool>, "kel: a described bool takes a bool.");
        return value(content);
    } else {
        static_assert(std::is_constructible_v<std::string, const Content&>,
                      "kel: a described text takes a text.");
        return value(std::string(content));
    }
}

} // namespace detail

/// The description of a variable: its kind, what it allows, its default, and how to show it. A
/// panel can be drawn from it.
class variable_description {
public:
    /// Takes a descriptor of the library, for example one that was read from a file.
    /// \throws type_error for null
    explicit variable_description(ref<MetaKelVarDescriptor> raw) : raw_(std::move(raw)) {
        if (!raw_) {
            detail::raise_wrong_kind({}, words(kel::kind::variable_descriptor), nullptr);
        }
    }

    /// Does not compile: values inside a checked struct are not described one by one.
    template <class T,
              std::enable_if_t<std::is_same_v<T, value> || std::is_same_v<T, checked>, int> = 0>
    variable_description(const T&) {
        static_assert(detail::never<T>,
                      "kel: a checked struct describes scalars. Put checked structs side by side "
                      "into kel::object({{\"left\", kel::checked(...)}, ...}).");
    }

    /// Returns the kind of the variable, or null if the description does not state it.
    kel::kind kind() const { return static_cast<kel::kind>(raw_->getVariableType()); }
    /// Return the ends of the range, or nothing for a variable without a range.
    /// \throws type_error for an end that is not a number
    std::optional<double> least() const {
        return raw_->isRanged() ? std::optional<double>(detail::least_of(*raw_)) : std::nullopt;
    }
    std::optional<double> greatest() const {
        return raw_->isRanged() ? std::optional<double>(detail::greatest_of(*raw_)) : std::nullopt;
    }
    /// Returns the distance between neighbours, if the description states it.
    std::optional<double> step() const {
        return raw_->hasStepsize() ? std::optional<double>(raw_->getStepsize()) : std::nullopt;
    }
    /// Returns copies of the allowed values. Empty for a variable that has no such list.
    /// \throws type_error if the list is not an array
    std::vector<value> choices() const {
        std::vector<value> found;
        if (raw_->isEnumerated()) {
            for (const value& each : detail::choices_of(*raw_).elements()) {
                found.push_back(each.copy());
            }
        }
        return found;
    }
    /// Returns a copy of the default, or null.
    value fallback() const { return value(share(raw_->getDefault())).copy(); }
    /// Return the texts to show after and before the value.
    std::string unit() const { return detail::text_of(raw_->getPostadorn()); }
    std::string prefix() const { return detail::text_of(raw_->getPreadorn()); }
    /// Returns whether stepping beyond one end goes on at the other.
    bool wrapped() const { return raw_->getWrapped(); }
    /// Returns whether kel.hpp refuses numbers between two steps.
    bool stepped() const { return detail::has_only_steps(*raw_); }
    /// Returns whether a document that is merged must have the variable.
    bool is_required() const { return detail::is_required(*raw_); }
    /// Returns the most characters that a text can have, if the description states it.
    std::optional<std::int32_t> longest() const { return detail::longest_of(*raw_); }
    /// Returns false for a text that is described as not_empty.
    bool allows_empty() const { return detail::allows_empty(*raw_); }
    /// Returns what is allowed, in the words of the refusals, printable: "from -60 to 6 dB", or
    /// "one of "mono", "stereo"".
    std::string allowed_text() const { return printable(detail::allowed_by(*raw_)); }

    /// Returns the value that a person typed, as a new value of the described kind. Accepts the
    /// same texts as try_set_text of kel::checked.
    ///
    ///     const int port = kel::describe<int>().range(1, 65535).read_text(argv[1], "PORT");
    ///
    /// \param name of what was typed, with which the message begins
    /// \throws not_allowed: "PORT: "x" is not a number; allowed is from 1 to 65535."
    value read_text(std::string_view typed, std::string_view name = {}) const;
    /// Returns why the description does not allow a value, printable, or nothing if it does.
    /// \param name of the value, with which the reason begins
    [[nodiscard]] std::string why_not(const value& content, std::string_view name = {}) const;
    template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int> = 0>
    [[nodiscard]] std::string why_not(Integer number, std::string_view name = {}) const {
        const std::string path(name);
        return why_not(detail::value_for(number, true, [&path] { return path; }), name);
    }

    /// Returns the descriptor as its public class, borrowed, or as a handle.
    MetaKelVarDescriptor* raw() const noexcept { return raw_.get(); }
    operator value() const { return value(raw_); }

protected:
    /// Holds the descriptor, which other descriptions and checked structs can share.
    ref<MetaKelVarDescriptor> raw_;
};

/// Builds the description of a variable of a C++ type:
///
///     const auto percent = kel::describe<int>().range(0, 100).unit(" %");
///     kel::checked lamp({{"red", percent.fallback(20)}, {"blue", percent}});
///
/// Nothing changes a description that has a name: each operation returns a changed copy. Copies and
/// checked structs that were made from a description keep what it said then.
template <class T> class [[nodiscard]] typed_description : public variable_description {
    static_assert(std::is_same_v<T, bool> || detail::is_number<T> || std::is_same_v<T, std::string>,
                  "kel: describe<bool>, describe of a number type, or describe<std::string>.");

public:
    using variable_description::fallback;
    using variable_description::longest;
    using variable_description::prefix;
    using variable_description::step;
    using variable_description::unit;

    /// Makes a description that states only the kind.
    typed_description() : variable_description(adopt_made(CreateMetaKelVarDescriptor())) {
        detail::call([this] { own().setType(value(T()).raw()->getType()); });
    }
    /// Allows the numbers from least to greatest, both included.
    /// \throws error if least is greater than greatest, one is not a number, or the description has
    ///         choices
    /// \throws std::out_of_range for a number that the type does not hold
    template <class Least, class Greatest>
    typed_description range(const Least& least, const Greatest& greatest) && {
        static_assert(detail::is_number<T>, "kel: only numbers have a range.");
        const value from = detail::described_value<T>(least);
        const value to = detail::described_value<T>(greatest);
        if (!(from.raw()->toDouble() <= to.raw()->toDouble())) {
            throw error("A range begins with its least number.");
        }
        refuse_both(raw_->isEnumerated());
        put("min", from);
        put("max", to);
        return std::move(*this);
    }
    /// Allows these values only: those in braces, or those of a container.
    /// \throws error if the description has a range, or limits the length
    typed_description one_of(std::initializer_list<T> allowed) && { return allow(allowed); }
    template <class Container> typed_description one_of(const Container& allowed) && {
        return allow(allowed);
    }
    /// Does not compile: values without braces are a mistake.
    template <class First, class Second, class... More>
    typed_description one_of(const First&, const Second&, const More&...) const {
        static_assert(!std::is_same_v<First, First>,
                      "kel: one_of takes values in braces: one_of({1, 2}).");
        return *this;
    }
    /// Sets the value of the variable while it has none. Whether it is allowed is checked when the
    /// description is used.
    template <class Content> typed_description fallback(const Content& content) && {
        put("default", detail::described_value<T>(content));
        return std::move(*this);
    }
    /// Sets the distance between neighbours. It is used by set_normalised and step_by of
    /// kel::checked; other values within the range remain allowed, unless there are only_steps.
    typed_description step(double distance) && {
        static_assert(detail::is_number<T>, "kel: only numbers have a step.");
        if (!(distance > 0)) {
            throw error("A step is greater than 0.");
        }
        if (std::is_integral_v<T> && distance != std::floor(distance)) {
            throw error("A step between whole numbers is a whole number.");
        }
        detail::call([&] { own().setStepsize(distance); });
        return std::move(*this);
    }
    /// Sets the text after the value, such as " dB", or before it.
    typed_description unit(const detail::text& after) && {
        put("postadorn", value(after.c_str()));
        return std::move(*this);
    }
    typed_description prefix(const detail::text& before) && {
        put("preadorn", value(before.c_str()));
        return std::move(*this);
    }
    /// Says that stepping beyond one end goes on at the other.
    typed_description wraps(bool does = true) && {
        detail::call([&] { own().setWrapped(does); });
        return std::move(*this);
    }
    /// Refuses numbers between two steps, which are counted from the least number, or from 0
    /// without a range. The step is 1 if it is not stated. Only kel.hpp checks this. The library
    /// and the tool look at the range alone.
    typed_description only_steps() && {
        static_assert(detail::is_number<T>, "kel: only numbers have a step.");
        detail::call([&] {
            own().setStepsize(raw_->getStepsize());
            own().setInterpolated(false);
        });
        return std::move(*this);
    }
    /// Says that a document must have the variable. merge reports one that lacks it: "price: is
    /// missing." Nothing else changes: the variable can have a default, and can be reset.
    typed_description required(bool is = true) && {
        put("required", value(is));
        return std::move(*this);
    }
    /// Refuses texts with more characters of UTF-8 than this. A byte that does not belong to a
    /// character counts as one. Only kel.hpp checks this, and not_empty.
    /// \throws error for less than one, or if the description has choices
    typed_description longest(std::int32_t characters) && {
        static_assert(std::is_same_v<T, std::string>, "kel: only texts have a length.");
        if (characters < 1) {
            throw error("The longest text has at least one character.");
        }
        refuse_both(raw_->isEnumerated());
        put("longest", value(characters));
        return std::move(*this);
    }
    /// Refuses the empty text. A text of blanks is not empty.
    /// \throws error if the description has choices
    typed_description not_empty() && {
        static_assert(std::is_same_v<T, std::string>, "kel: only texts have a length.");
        refuse_both(raw_->isEnumerated());
        put("not_empty", value(true));
        return std::move(*this);
    }

    /// Returns what a person typed, as the read_text of variable_description, in the described
    /// type. \throws not_allowed also for a number that the type does not hold
    T read_text(std::string_view typed, std::string_view name = {}) const {
        const value read = variable_description::read_text(typed, name);
        if (std::optional<T> fitting = read.try_get<T>()) {
            return *std::move(fitting);
        }
        throw not_allowed(detail::lead(std::string(name)) + detail::shown(read.raw()) +
                          " does not fit the described type.");
    }

    /// Return a changed copy, and leave this description as it is. They fail in the same way.
    template <class Least, class Greatest>
    typed_description range(const Least& least, const Greatest& greatest) const& {
        return copied().range(least, greatest);
    }
    typed_description one_of(std::initializer_list<T> a) const& { return copied().one_of(a); }
    template <class Container> typed_description one_of(const Container& a) const& {
        return copied().one_of(a);
    }
    template <class Content> typed_description fallback(const Content& a) const& {
        return copied().fallback(a);
    }
    typed_description step(double a) const& { return copied().step(a); }
    typed_description unit(const detail::text& a) const& { return copied().unit(a); }
    typed_description prefix(const detail::text& a) const& { return copied().prefix(a); }
    typed_description wraps(bool a = true) const& { return copied().wraps(a); }
    typed_description only_steps() const& { return copied().only_steps(); }
    typed_description required(bool a = true) const& { return copied().required(a); }
    typed_description longest(std::int32_t a) const& { return copied().longest(a); }
    typed_description not_empty() const& { return copied().not_empty(); }

private:
    /// Returns a description that shares the descriptor until it is changed.
    typed_description copied() const { return *this; }
    /// Returns the descriptor for a change. If others share it, this description gets a copy first.
    MetaKelVarDescriptor& own() {
        raw_->addRef();
        if (raw_->release() > 1) { // the count without the reference that was added
            raw_ = value(raw_).copy().template as<MetaKelVarDescriptor>();
        }
        return *raw_;
    }
    /// Refuses choices together with a range, of which the library looks at the range alone, and
    /// with a length, which could refuse a choice.
    static void refuse_both(bool has_other) {
        if (has_other) {
            throw error(std::is_same_v<T, std::string>
                            ? "A description has either a length or choices."
                            : "A description has either a range or choices.");
        }
    }
    /// Sets a property to a new value.
    void put(const char* property, const value& content) {
        detail::call([&] { own().addVar(property, content.raw()); });
    }
    template <class Container> typed_description allow(const Container& allowed) {
        using Element = detail::element_of<Container>;
        static_assert(!std::is_void_v<Element>,
                      "kel: one_of takes values in braces or a container.");
        refuse_both(raw_->isRanged() || detail::limits_length(*raw_));
        value list = array();
        for (auto&& each : allowed) {
            list.push_back(detail::described_value<T>(static_cast<const Element&>(each)));
        }
        put("enum", list);
        return std::move(*this);
    }
};

/// Returns an empty description, to be completed by its operations.
template <class T> typed_description<T> describe() {
    return typed_description<T>();
}

} // namespace v1
} // namespace kel
