/// \file
/// clampTo: a number in a type that cannot hold every number of its source.
#pragma once

#include <limits>
#include <utility>

namespace kel {

/// Returns the value, or the number of type To that is nearest to it. A count that a frozen
/// interface returns in 32 bits is then too small for a huge container or text, but never negative
/// and never beyond the end.
template <class To, class From> constexpr To clampTo(From value) {
    using Limits = std::numeric_limits<To>;
    if (std::cmp_less(value, Limits::min())) {
        return Limits::min();
    }
    return std::cmp_greater(value, Limits::max()) ? Limits::max() : static_cast<To>(value);
}

} // namespace kel
