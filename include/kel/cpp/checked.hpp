/// \file
/// checked: a handle to a checked struct, which stores only what its description allows.
#pragma once

#include <kel/cpp/describe.hpp>

namespace kel {
inline namespace v1 {

/// A variable for kel::checked.
struct described {
    std::string_view name;
    variable_description rules;
};

/// Whether a value was stored, and if not, why.
class [[nodiscard]] outcome {
public:
    outcome() = default;
    explicit outcome(std::string reason) : reason_(std::move(reason)) {}

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
        const ref<MetaKelDescriptor> all =
            detail::make(KELKind_MetaKelDescriptor, identity).as<MetaKelDescriptor>();
        for (const described& each : variables) {
            add(*all, each);
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

    MetaKel* raw() const noexcept { return raw_.get(); }
    operator value() const { return value(raw_); }

    /// Return the place of a variable, for one expression, as value does.
    place operator[](const char* name) { return value(*this)[name]; }
    const_place operator[](const char* name) const {
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
        const MetaKelVarDescriptor* rules = detail::description_of(target(), name.c_str());
        if (rules == nullptr) {
            return outcome(std::string(name.c_str()) + " is not described.");
        }
        std::string reason = detail::why_not(*rules, name.c_str(), content.raw());
        if (reason.empty()) {
            detail::store(raw_.get(), name.c_str(), content.raw());
        }
        return outcome(std::move(reason));
    }
    /// \throws not_allowed with the reason
    void set(const detail::text& name, const value& content) {
        const outcome done = try_set(name, content);
        if (!done) {
            throw not_allowed(done.message());
        }
    }
    /// Removes the variable, so that it has its default again.
    void reset(const detail::text& name) { value(*this).erase(name); }

    /// Returns where the variable is between its ends: 0 for the least number or first choice, 1
    /// for the greatest or last one.
    /// \throws error for a variable that has neither a range nor choices
    double normalised(const detail::text& name) const {
        const scale ends(rules_of(name), name);
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
        const scale ends(rules, name);
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
        const scale ends(rules, name);
        set(name, ends.after(current(name), steps, rules.getWrapped()));
    }
    /// Returns the value with the texts before and after it, to be shown: "-6.5 dB".
    std::string text(const detail::text& name) const {
        const MetaKelVarDescriptor& rules = rules_of(name);
        const value content = current(name);
        const std::string middle = content.kind() == kel::kind::string
                                       ? content.get<std::string>()
                                       : detail::shown(content.raw());
        return detail::text_of(rules.getPreadorn()) + middle +
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
    /// The ends of a described variable, and what lies between.
    class scale {
    public:
        scale(const MetaKelVarDescriptor& rules, const detail::text& name) {
            if (rules.isRanged()) {
                least_ = detail::bound_of(detail::call([&] { return rules.getMin(); }));
                greatest_ = detail::bound_of(detail::call([&] { return rules.getMax(); }));
                width_ = greatest_ - least_;
                step_ = rules.hasStepsize() || !rules.getInterpolated() ||
                                rules.getVariableType() == KELKind_Int
                            ? rules.getStepsize()
                            : 0;
                unit_ = rules.getStepsize();
                is_whole_ = rules.getVariableType() == KELKind_Int;
            } else if (rules.isEnumerated()) {
                choices_ = detail::choices_of(rules);
            } else {
                throw error(std::string(name.c_str()) + " has neither a range nor choices.");
            }
        }

        double from(const value& content) const {
            if (!choices_) {
                return width_ > 0 ? (content.raw()->toDouble() - least_) / width_ : 0;
            }
            const double last = last_choice();
            return last > 0 ? static_cast<double>(index_of(content)) / last : 0;
        }
        value at(double place) const {
            if (choices_) {
                return choice(static_cast<std::size_t>(std::lround(place * last_choice())));
            }
            return stepped(place * width_);
        }
        value after(const value& content, int steps, bool wraps) const {
            if (choices_) {
                const auto count = static_cast<std::int64_t>(choices_.size());
                std::int64_t next = static_cast<std::int64_t>(index_of(content)) + steps;
                next = wraps && count > 0
                           ? (next % count + count) % count
                           : (std::min)((std::max<std::int64_t>)(next, 0), count - 1);
                return choice(static_cast<std::size_t>(next));
            }
            double offset = content.raw()->toDouble() - least_ + steps * unit_;
            if (wraps && width_ > 0 && (offset < 0 || offset > width_)) {
                const double turn = is_whole_ ? width_ + unit_ : width_;
                offset -= std::floor(offset / turn) * turn;
            }
            return stepped((std::min)(width_, (std::max)(0.0, offset)));
        }

    private:
        double last_choice() const { return static_cast<double>(choices_.size()) - 1; }
        std::size_t index_of(const value& content) const {
            std::size_t index = 0;
            for (const value& each : choices_.elements()) {
                if (each == content) {
                    return index;
                }
                ++index;
            }
            return 0;
        }
        value choice(std::size_t index) const {
            const value list = choices_;
            return value(list[index]);
        }
        /// Returns the number at an offset from the least one, rounded to a step within the range.
        value stepped(double offset) const {
            double number = least_ + offset;
            if (step_ > 0) {
                constexpr double noise = 1e-9; // three steps of 0.1 are a little more than 0.3
                const double last = std::floor(width_ / step_ + noise);
                const double steps = (std::min)(std::round(offset / step_), last);
                number = detail::without_noise(least_ + steps * step_,
                                               (std::max)(std::abs(least_), std::abs(greatest_)));
            }
            return (std::min)(greatest_, (std::max)(least_, number));
        }

        double least_ = 0;
        double greatest_ = 0;
        double width_ = 0;
        double step_ = 0;       ///< numbers are rounded to multiples; 0 if they are not rounded
        double unit_ = 1;       ///< the distance to the next number
        bool is_whole_ = false; ///< the ends are different numbers, also of one that wraps
        value choices_;
    };

    static void add(MetaKelDescriptor& all, const described& variable) {
        const MetaKelVarDescriptor& rules = *variable.rules.raw();
        const detail::text name(variable.name);
        if (KEL* fallback = rules.getDefault()) {
            const std::string reason = detail::why_not(rules, name.c_str(), fallback);
            if (!reason.empty()) {
                throw not_allowed("The default of " + reason);
            }
        }
        const char* stored = detail::checked_name(name);
        detail::refuse_reserved(stored);
        detail::call([&] { all.addVar(stored, variable.rules.raw()); });
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
        const value self = *this;
        const value stored = self[name.c_str()];
        const value used = stored ? stored : value(share(rules_of(name).getDefault()));
        if (!used) {
            detail::raise_wrong_kind(name.c_str(), "a value", nullptr);
        }
        return used;
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
