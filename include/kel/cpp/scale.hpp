/// \file
/// scale: the ends of a described variable, and what lies between.
#pragma once

#include <kel/cpp/rules.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns a number without the last digits that a sum of numbers up to the greatest one can have
/// wrong: 603 steps of 0.1 from -60 are 0.3, not 0.30000000000000426.
inline double without_noise(double number, double greatest) {
    constexpr double most = 1e15; // beyond, every digit is before the point
    if (!(greatest < most)) {
        return number;
    }
    const int decimals = 14 - static_cast<int>(std::ceil(std::log10((std::max)(greatest, 1e-3))));
    return rounded(number, (std::max)(decimals, 0));
}

/// Returns the number after so many steps from the first one.
/// \param greatest the size of the numbers, which decides how many digits are noise
inline double number_at_step(double first, double steps, double step, double greatest) {
    return without_noise(first + steps * step, greatest);
}

/// Returns the number at the step that is nearest to a number, counted as is_at_step does. Returns
/// the number itself if another program has described ends that are not numbers.
inline double nearest_step(const MetaKelVarDescriptor& rules, double number) {
    double first = 0;
    double last = number;
    if (rules.isRanged()) {
        KEL* least = rules.getMin();
        KEL* greatest = rules.getMax();
        if (least == nullptr || greatest == nullptr || read(*least, first) != reading::done ||
            read(*greatest, last) != reading::done) {
            return number;
        }
    }
    const double step = rules.getStepsize();
    return number_at_step(first, std::round((number - first) / step), step,
                          (std::max)(std::abs(first), std::abs(last)));
}

/// Returns the list of the values that a variable can have, false and true for a truth value.
/// Returns null for a variable without such a list.
/// \throws type_error if the description has something else than an array
inline value list_of_choices(const MetaKelVarDescriptor& rules) {
    return rules.isEnumerated()                         ? choices_of(rules)
           : rules.getVariableType() == KELKind_Boolean ? array({false, true})
                                                        : value();
}

/// The ends of a described variable, and what lies between.
class scale {
public:
    /// \throws error for a variable that has neither a range nor choices, with its path
    scale(const MetaKelVarDescriptor& rules, const std::string& path) {
        if (rules.isRanged()) {
            least_ = least_of(rules);
            greatest_ = greatest_of(rules);
            width_ = greatest_ - least_;
            step_ = rules.hasStepsize() || !rules.getInterpolated() ||
                            rules.getVariableType() == KELKind_Int
                        ? rules.getStepsize()
                        : 0;
            unit_ = rules.getStepsize();
            has_only_steps_ = has_only_steps(rules);
            is_whole_ = rules.getVariableType() == KELKind_Int;
        } else {
            choices_ = list_of_choices(rules);
        }
        if (!rules.isRanged() && !choices_) {
            throw error(path + ": has neither a range nor choices.");
        }
    }

    /// Returns where the content is: from 0 to 1, also for a content that is not allowed.
    double from(const value& content) const {
        if (!choices_) {
            const double place = (content.raw()->toDouble() - least_) / width_;
            return place > 0 ? (std::min)(place, 1.0) : 0; // which NaN is not
        }
        const double last = last_choice();
        return last > 0 ? static_cast<double>(index_of(content)) / last : 0;
    }
    /// Returns the number or choice at a place from 0 to 1. The ends are exact.
    value at(double place) const {
        if (choices_) {
            return choice(static_cast<std::size_t>(std::lround(place * last_choice())));
        }
        return place >= 1 && step_ == 0 ? value(greatest_) : nearest(place * width_);
    }
    /// Returns the nearest number at a step, within the range, to one that is or is not.
    value nearest_to(double number) const { return nearest(number - least_); }
    /// Returns what is so many steps up or down. From between two steps, the first one leads to the
    /// next step in that direction. None is beyond the last step, so nothing is up from a number
    /// between that and the end. 0 steps lead to the nearest step.
    value after(const value& content, int steps, bool wraps) const {
        if (choices_) {
            const auto count = static_cast<std::int64_t>(choices_.size());
            std::int64_t next = static_cast<std::int64_t>(index_of(content)) + steps;
            next = wraps && count > 0 ? (next % count + count) % count
                                      : (std::min)((std::max<std::int64_t>)(next, 0), count - 1);
            return choice(static_cast<std::size_t>(next));
        }
        const double offset = content.raw()->toDouble() - least_;
        double next = offset + steps * unit_;
        if (step_ > 0) {
            next = (whole_steps(offset / step_, steps) + steps) * step_;
        }
        if (wraps && width_ > 0 && (next < 0 || next > width_)) {
            const double turn = is_whole_ ? width_ + unit_ : width_;
            return nearest(next - std::floor(next / turn) * turn);
        }
        const bool is_beyond_last = steps > 0 && step_ > 0 && !has_only_steps_ &&
                                    offset <= width_ && offset > last_step() * step_;
        return is_beyond_last ? content : nearest((std::min)(width_, (std::max)(0.0, next)));
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
    /// Returns the number of the last step within the range, counted from the least number.
    double last_step() const {
        constexpr double noise = 1e-9; // three steps of 0.1 are a little more than 0.3
        return std::floor(width_ / step_ + noise);
    }
    /// Returns the step from which steps up or down are counted.
    static double whole_steps(double place, int steps) {
        constexpr double tolerance = 1e-3; // as for is_at_step
        const double at = std::round(place);
        return steps == 0 || std::abs(place - at) < tolerance ? at
               : steps > 0                                    ? std::floor(place)
                                                              : std::ceil(place);
    }
    /// Returns the number at an offset from the least one, rounded to a step within the range.
    value nearest(double offset) const {
        double number = least_ + offset;
        if (step_ > 0) {
            constexpr double noise = 1e-9; // of the width
            const double steps =
                (std::max)(0.0, (std::min)(std::round(offset / step_), last_step()));
            const bool is_end = std::abs(steps * step_ - width_) <= noise * width_;
            number = steps == 0 ? least_
                     : is_end   ? greatest_
                                : number_at_step(least_, steps, step_,
                                                 (std::max)(std::abs(least_), std::abs(greatest_)));
        }
        return (std::min)(greatest_, (std::max)(least_, number));
    }

    double least_ = 0;
    double greatest_ = 0;
    double width_ = 0;
    double step_ = 0;             ///< numbers are rounded to multiples; 0 if they are not rounded
    double unit_ = 1;             ///< the distance to the next number
    bool has_only_steps_ = false; ///< other numbers are not allowed
    bool is_whole_ = false;       ///< the ends are different numbers, also of one that wraps
    value choices_;
};

} // namespace detail
} // namespace v1
} // namespace kel
