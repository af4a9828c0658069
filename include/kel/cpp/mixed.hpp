/// \file
/// mixed: what is between two presets.
#pragma once

#include <kel/cpp/checked.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the number between two ones, for a variable with a range.
/// \param where more than 0 and less than 1
inline value between(const MetaKelVarDescriptor& rules, const std::string& path, double first,
                     double second, double where) {
    const double number = first + (second - first) * where;
    const auto [least, greatest] = std::minmax(first, second); // of which rounding can lead out
    return scale(rules, path).nearest_to((std::min)(greatest, (std::max)(least, number)));
}

/// Returns the value that a preset gives a variable, as merge with missing::reset stores it: the
/// default for what the preset lacks or has with a refused value. Returns null without a default.
inline value value_in_preset(const MetaKelVarDescriptor& rules, const std::string& name,
                             const value& preset) {
    if (const value found = preset.find(name)) {
        const value exact = unchanged_in_document(rules, found.raw(), nullptr);
        if (why_not(rules, name, exact.raw()).empty()) {
            return call([&] { return made_for(rules, exact.raw()); });
        }
    }
    return value(share(rules.getDefault())).copy();
}

} // namespace detail

inline value checked::mixed(const value& first, const value& second, double where) const {
    if (std::isnan(where)) {
        throw std::out_of_range("a place between two presets is a number.");
    }
    value found = object();
    for (const std::string& name : names()) {
        const MetaKelVarDescriptor& rules = *detail::description_of(target(), name.c_str());
        const value from = detail::value_in_preset(rules, name, first);
        const value to = detail::value_in_preset(rules, name, second);
        const std::optional<double> low = from.try_get<double>();
        const std::optional<double> high = to.try_get<double>();
        if (rules.isRanged() && low && high && *low != *high && where > 0 && where < 1) {
            found.set(name, detail::between(rules, detail::path_to(name), *low, *high, where));
        } else if (const value nearer = where < 0.5 ? from : to) {
            found.set(name, nearer);
        }
    }
    return found;
}

} // namespace v1
} // namespace kel
