/// \file
/// visit: one function for each kind of value.
#pragma once

#include <kel/cpp/range.hpp>

namespace kel {
inline namespace v1 {

namespace detail {

struct no_branch {};

/// A function for one type, which takes part in overload resolution beside those of a visitor.
template <class T> struct constant_probe { no_branch operator()(T) const; };
template <class T> struct mutable_probe { no_branch operator()(T); };

/// A visitor and a probe, which is never made. A template of the visitor is a worse match than the
/// probe, and a function of the visitor for the same type is an equal one.
template <class Visitor, class Probe> struct probed : Visitor, Probe {
    using Visitor::operator();
    using Probe::operator();
};

/// Whether a call with this type is ambiguous.
template <class Probed, class T>
inline constexpr bool is_ambiguous = !std::is_invocable_v<Probed, T>;

/// Returns whether a visitor has a function for exactly this type, not one for any type.
template <class Visitor, class T> constexpr bool has_branch() {
    if constexpr (std::is_class_v<Visitor> && !std::is_final_v<Visitor>) {
        return is_ambiguous<const probed<Visitor, constant_probe<T>>&, T> ||
               is_ambiguous<probed<Visitor, mutable_probe<T>>&, T>;
    } else {
        return false;
    }
}

/// Whether a visitor has a function for each type that visit calls it with.
template <class Visitor, class... Types>
inline constexpr bool has_branches = (std::is_invocable_v<Visitor&, Types> && ...);

template <class Visitor> constexpr void require_branches() {
    using Own = std::remove_cv_t<Visitor>;
    static_assert(has_branch<Own, std::string_view>() ||
                      (!has_branch<Own, const std::string&>() && !has_branch<Own, const char*>()),
                  "kel: visit calls with text as std::string_view. Write that instead of "
                  "std::string or a pointer, which is never called.");
    static_assert(
        has_branches<Visitor, std::nullptr_t, std::int32_t, bool, double, std::string_view, guid,
                     bytes, item_range, element_range, pair_range, const value&>,
        "kel: visit needs a function for every type: std::nullptr_t, std::int32_t, bool, "
        "double, std::string_view, kel::guid, kel::bytes, kel::item_range, "
        "kel::element_range, kel::pair_range and kel::value. Add [](const auto&) {} for "
        "the others.");
}

} // namespace detail

/// Calls the function with what the value is. It must take each of these types. A function for
/// another type, such as std::string or std::int64_t, is never called beside one for any type.
///
/// | Kind | Called with |
/// | --- | --- |
/// | null | std::nullptr_t |
/// | Int | std::int32_t |
/// | Boolean | bool |
/// | Double | double |
/// | String | std::string_view, valid until the value changes |
/// | guid | kel::guid |
/// | MemBlock | kel::bytes |
/// | every kind of struct | kel::item_range |
/// | array, manager | kel::element_range |
/// | index list | kel::pair_range |
/// | selectors, and kinds that this header does not know | the handle itself, a kel::value |
///
///     kel::visit([](auto what) { ... }, v);
///
/// \return what the function returns, which must have the same type for all
template <class Function> decltype(auto) visit(Function&& function, const value& which) {
    detail::require_branches<std::remove_reference_t<Function>>();
    KEL* object = which.raw();
    switch (which.kind()) {
    case kind::null:
        return function(nullptr);
    case kind::integer:
        return function(object->toInt());
    case kind::boolean:
        return function(object->toBoolean());
    case kind::real:
        return function(object->toDouble());
    case kind::string:
        return function(std::string_view(object->toString()));
    case kind::guid:
        return function(which.get<guid>());
    case kind::block:
        return function(which.get<bytes>());
    case kind::array:
    case kind::manager:
        return function(which.elements());
    case kind::structure:
    case kind::checked:
    case kind::descriptor:
    case kind::variable_descriptor:
        return function(which.items());
    case kind::index_list:
        return function(which.pairs());
    case kind::selector:
    case kind::multi_selector:
        break;
    }
    return function(which);
}

/// Joins functions for visit: `kel::overloaded{[](double) {...}, [](auto) {...}}`.
template <class... Functions> struct overloaded : Functions... { using Functions::operator()...; };
template <class... Functions> overloaded(Functions...) -> overloaded<Functions...>;

} // namespace v1
} // namespace kel
