/// \file
/// room_for: limits for so many structs of the same rules.
#pragma once

#include <kel/cpp/checked.hpp>
#include <kel/cpp/limits.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// What values take at most, in values as limits count them, and in bytes of a file.
struct room {
    std::uintmax_t values;
    std::uintmax_t bytes;
};

/// Returns the room of a text of so many characters of UTF-8 at most.
inline room room_of_text(std::uintmax_t characters) {
    constexpr std::uintmax_t bytes_of_a_character = 4;
    const std::uintmax_t bytes = characters * bytes_of_a_character;
    // In text, the quotes and the line take less than the header does in binary.
    return {1 + values_for(bytes), record_header_size + bytes};
}

/// Returns the room of a described value. Choices are texts or numbers.
inline room room_of(const variable_description& rules) {
    constexpr std::uintmax_t usual_length = 200;
    constexpr room of_anything_else = {1, record_header_size + sizeof(double)};
    if (rules.kind() != kind::string) {
        return of_anything_else;
    }
    std::uintmax_t longest = rules.longest() ? static_cast<std::uintmax_t>(*rules.longest()) : 0;
    for (const value& each : rules.choices()) {
        longest = (std::max)(longest, std::uintmax_t{each.get<std::string>().size()});
    }
    return room_of_text(rules.longest() || longest > 0 ? longest : usual_length);
}

inline std::uintmax_t capped_product(std::uintmax_t a, std::uintmax_t b) {
    return b != 0 && a > UINTMAX_MAX / b ? UINTMAX_MAX : a * b;
}

} // namespace detail

inline limits limits::room_for(std::uintmax_t count, const checked& rules) const {
    detail::room each = {1, detail::record_header_size}; // of the struct itself
    for (const std::string& name : rules.names()) {
        const detail::room inside = detail::room_of(rules.description(name));
        each.values += inside.values + detail::values_for(name.size());
        each.bytes += inside.bytes + name.size() + 1;
    }
    return values(detail::capped_sum(most_values(), detail::capped_product(count, each.values)))
        .bytes(detail::capped_sum(most_bytes(), detail::capped_product(count, each.bytes)));
}

} // namespace v1
} // namespace kel
