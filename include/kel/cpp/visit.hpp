/// \file
/// visit: one function for each kind of value.
#pragma once

#include <kel/cpp/range.hpp>

namespace kel {
inline namespace v1 {

/// Calls the function with what the value is: nullptr for null, std::int32_t, bool, double,
/// std::string_view (valid until the value changes), kel::guid, kel::bytes, an item_range for every
/// kind of struct, an element_range for an array or a manager, a pair_range for an index list, and
/// the handle itself for selectors and for kinds that this header does not know.
///
///     kel::visit([](auto what) { ... }, v);
///
/// \return what the function returns, which must have the same type for all
template <class Function> decltype(auto) visit(Function&& function, const value& which) {
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
