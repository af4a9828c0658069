/// \file
/// Comparisons of places and values that do not compile, with what to write instead.
#pragma once

#include <kel/cpp/place.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

template <class T> inline constexpr bool is_place = std::is_base_of_v<const_place, std::decay_t<T>>;
/// Whether a type is deduced from a place with a name, which only the place at a path can be read
/// from.
template <class T>
inline constexpr bool is_kept_place =
    is_place<T>&& std::is_lvalue_reference_v<T> && !std::is_convertible_v<T, value>;
template <class T>
inline constexpr bool has_no_order = is_place<T> || std::is_same_v<std::decay_t<T>, value>;

} // namespace detail

/// Does not compile. The places of one expression are compared as values are, by their contents.
template <class A, class B,
          std::enable_if_t<detail::is_kept_place<A> || detail::is_kept_place<B>, int> = 0>
bool operator==(A&&, B&&) {
    static_assert(detail::never<A>, "kel: a place such as room[\"size\"] lasts for one "
                                    "expression. Write kel::value size = room[\"size\"];");
    return false;
}
/// Does not compile, for the same reason.
template <class A, class B,
          std::enable_if_t<detail::is_kept_place<A> || detail::is_kept_place<B>, int> = 0>
bool operator!=(A&& a, B&& b) {
    return !(a == b);
}
/// Does not compile. Values of any kind have no order.
template <class A, class B,
          std::enable_if_t<detail::has_no_order<A> || detail::has_no_order<B>, int> = 0>
bool operator<(A&&, B&&) {
    static_assert(detail::never<A>,
                  "kel: values of any kind have no order. Read them as one type: "
                  "std::max(room[\"x\"].get<double>(), room[\"y\"].get<double>()).");
    return false;
}
/// Does not compile, for the same reason.
template <class A, class B,
          std::enable_if_t<detail::has_no_order<A> || detail::has_no_order<B>, int> = 0>
bool operator>(A&& a, B&& b) {
    return b < a;
}
/// Does not compile, for the same reason.
template <class A, class B,
          std::enable_if_t<detail::has_no_order<A> || detail::has_no_order<B>, int> = 0>
bool operator<=(A&& a, B&& b) {
    return !(b < a);
}
/// Does not compile, for the same reason.
template <class A, class B,
          std::enable_if_t<detail::has_no_order<A> || detail::has_no_order<B>, int> = 0>
bool operator>=(A&& a, B&& b) {
    return !(a < b);
}

} // namespace v1
} // namespace kel
