/// \file
/// described_variable: what can be done with a variable by its description, for kel::checked and
/// for places.
#pragma once

#include <kel/cpp/describe.hpp>
#include <kel/cpp/scale.hpp>
#include <kel/cpp/store_checked.hpp>
#include <kel/cpp/typed_text.hpp>

namespace kel {
inline namespace v1 {

/// Whether a value was stored, and if not, why.
class [[nodiscard]] outcome {
public:
    outcome() = default;
    /// Makes one that states why nothing was stored.
    explicit outcome(const std::string& reason) : reason_(printable(reason)) {}

    /// Returns true if the value was stored.
    explicit operator bool() const noexcept { return reason_.empty(); }
    /// Returns the reason, which says what is allowed and is printable. Empty if the value was
    /// stored.
    const std::string& message() const noexcept { return reason_; }

    /// Returns the same outcome with a path before the one with which the message begins:
    /// "parts[3].price: 9 is not allowed." That is for a variable of a struct inside a document,
    /// such as one that kel::taken has the path of.
    outcome under(std::string_view path) const {
        const bool joins = path.empty() || *this || reason_.front() == '[';
        return *this ? *this : outcome(std::string(path) + (joins ? "" : ".") + reason_);
    }
    /// Throws the message unless the value was stored.
    ///
    ///     rules.try_set("price", price).under(parts.path_of(i)).or_throw(kel::blame::content);
    ///
    /// \throws not_allowed, which blames the argument, or the content of a document that the
    /// program
    ///         checks itself
    void or_throw(blame whose = blame::argument) const {
        if (!*this) {
            throw not_allowed(reason_, whose);
        }
    }

private:
    std::string reason_;
};

namespace detail {

/// A variable of a checked struct, for one call. The struct and the name are borrowed. The
/// operations are those of kel::checked. Their failures begin with the path.
class described_variable {
public:
    described_variable(MetaKel& target, const char* name, std::string path)
        : target_(target), name_(name), path_(std::move(path)),
          rules_(description_of(target, name)) {}

    std::string why_not(const value& content) const {
        return printable(
            rules_ == nullptr
                ? unknown_in(target_, name_, path_)
                : detail::why_not(*rules_, path_, unchanged_by_text(*rules_, content.raw()).raw()));
    }
    template <class Integer, std::enable_if_t<is_integer<Integer>, int> = 0>
    std::string why_not(Integer number) const {
        return why_not(value_for(number, true, [this] { return path_; }));
    }
    outcome try_set(const value& content) const {
        return outcome(try_store(target_, name_, path_, content.raw(), origin::program));
    }
    template <class Integer, std::enable_if_t<is_integer<Integer>, int> = 0>
    outcome try_set(Integer number) const {
        return try_set(value_for(number, true, [this] { return path_; }));
    }
    outcome try_set_text(std::string_view typed) const {
        std::string reason;
        const value content =
            rules_ == nullptr ? value() : read_typed(*rules_, path_, typed, reason);
        return !reason.empty()  ? outcome(reason)
               : shows(content) ? try_set(current())
                                : try_set(content);
    }
    template <class Content> void set(const Content& content) const { try_set(content).or_throw(); }
    void set_text(std::string_view typed) const { try_set_text(typed).or_throw(); }
    void reset() const {
        require_rules();
        value(share(&target_)).erase(name_);
    }
    bool is_default() const {
        require_rules();
        return !target_.containsVar(name_);
    }
    bool has_default_value() const {
        const value fallback(share(require_rules().getDefault()));
        const value stored = value(share(&target_)).find(name_);
        return stored == fallback;
    }

    bool has_scale() const {
        return rules_ != nullptr && (rules_->isRanged() || rules_->isEnumerated() ||
                                     rules_->getVariableType() == KELKind_Boolean);
    }
    double normalised() const { return ends().from(current()); }
    void set_normalised(double place) const {
        if (std::isnan(place)) {
            throw std::out_of_range(printable(path_ + ": a place between two ends is a number."));
        }
        const scale between = ends();
        if (rules_->getWrapped() && (place < 0 || place > 1)) {
            place -= std::floor(place);
        }
        set(between.at((std::min)(1.0, (std::max)(0.0, place))));
    }
    void step_by(int steps) const {
        const scale between = ends();
        set(between.after(current(), steps, rules_->getWrapped()));
    }

    std::string text() const {
        const MetaKelVarDescriptor& rules = require_rules();
        return adorned_text(rules, current().raw());
    }
    std::vector<std::string> choice_texts() const {
        const MetaKelVarDescriptor& rules = require_rules();
        std::vector<std::string> found;
        if (const value choices = list_of_choices(rules)) {
            for (const value& each : choices.elements()) {
                found.push_back(adorned_text(rules, each.raw()));
            }
        }
        return found;
    }
    variable_description description() const {
        return variable_description(share(&require_rules()));
    }

private:
    MetaKelVarDescriptor& require_rules() const {
        if (rules_ == nullptr) {
            throw not_found(unknown_in(target_, name_, path_), blame::argument);
        }
        return *rules_;
    }
    /// Returns whether a number that was typed is the one that text shows for the variable. The
    /// variable can have more digits, which a person that changes nothing must not take away.
    bool shows(const value& typed) const {
        if (rules_ == nullptr || rules_->isEnumerated()) {
            return false;
        }
        const value stored = value(share(&target_)).find(name_);
        return stored.kind() == kind::real && typed.kind() == kind::real &&
               with_kept_digits(stored.raw()->toDouble()) == typed.raw()->toDouble();
    }
    scale ends() const { return scale(require_rules(), path_); }
    /// Returns the variable, or its default if it is missing or null.
    value current() const {
        const value stored = value(share(&target_)).find(name_);
        value used = stored ? stored : value(share(require_rules().getDefault()));
        if (!used) {
            throw not_found(path_ + ": has neither a value nor a default.");
        }
        return used;
    }

    MetaKel& target_;
    const char* name_;
    std::string path_;
    MetaKelVarDescriptor* rules_; ///< null if the variable is not described
};

/// Returns the variable at a location.
/// \throws not_found for a missing variable or element of anything else than a checked struct
/// \throws type_error if it is not a variable of a checked struct
inline described_variable described_at(const location& at) {
    if (lacks_container(at)) {
        raise_missing(at);
    }
    MetaKel* target = at.name == nullptr ? nullptr : checked_of(at.container);
    if (target == nullptr) {
        look_or_throw(at); // a missing variable is one, whatever its struct is
        const std::string path = path_of(at);
        throw type_error((path.empty() ? "The document" : path + ':') + " is not described.");
    }
    return {*target, at.name, path_of(at)};
}

} // namespace detail

// ---- Descriptions ------------------------------------------------------------------------------

inline value variable_description::read_text(std::string_view typed, std::string_view name) const {
    const std::string path(name);
    std::string reason;
    const value read = detail::read_typed(*raw_, path, typed, reason);
    if (reason.empty()) {
        reason = why_not(read, name);
    }
    outcome(reason).or_throw();
    return detail::call([&] {
        return detail::made_for(*raw_, detail::unchanged_by_text(*raw_, read.raw()).raw());
    });
}
inline std::string variable_description::why_not(const value& content,
                                                 std::string_view name) const {
    return printable(detail::why_not(*raw_, std::string(name),
                                     detail::unchanged_by_text(*raw_, content.raw()).raw()));
}

// ---- Places ------------------------------------------------------------------------------------

inline bool const_place::is_described() && {
    const MetaKel* target = at_.name == nullptr ? nullptr : detail::checked_of(at_.container);
    return target != nullptr && detail::is_described(*target, at_.name);
}
inline bool const_place::has_scale() && {
    return detail::described_at(at_).has_scale();
}
inline double const_place::normalised() && {
    return detail::described_at(at_).normalised();
}
inline std::string const_place::text() && {
    return detail::described_at(at_).text();
}
inline std::vector<std::string> const_place::choice_texts() && {
    return detail::described_at(at_).choice_texts();
}
inline std::string const_place::allowed_text() && {
    return detail::described_at(at_).description().allowed_text();
}
inline variable_description const_place::description() && {
    return detail::described_at(at_).description();
}
inline bool const_place::is_default() && {
    return detail::described_at(at_).is_default();
}
inline bool const_place::has_default_value() && {
    return detail::described_at(at_).has_default_value();
}
inline outcome place::try_set(const value& content) && {
    refuse_default();
    return detail::described_at(at_).try_set(content);
}
template <class Integer, std::enable_if_t<detail::is_integer<Integer>, int>>
outcome place::try_set(Integer number) && {
    refuse_default();
    return detail::described_at(at_).try_set(number);
}
inline outcome place::try_set_text(std::string_view typed) && {
    refuse_default();
    return detail::described_at(at_).try_set_text(typed);
}
inline void place::set_text(std::string_view typed) && {
    refuse_default();
    detail::described_at(at_).set_text(typed);
}
inline void place::set_normalised(double where) && {
    refuse_default();
    detail::described_at(at_).set_normalised(where);
}
inline void place::step_by(int steps) && {
    refuse_default();
    detail::described_at(at_).step_by(steps);
}
inline void place::reset() && {
    refuse_default();
    detail::described_at(at_).reset();
}

} // namespace v1
} // namespace kel
