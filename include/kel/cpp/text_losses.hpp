/// \file
/// lost_in_text: what a text file would not give back.
#pragma once

#include <kel/cpp/limits.hpp>

#include <cstring>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns why text does not give a value back, apart from the decimals of a Double. Returns null
/// if it does, and for a container.
inline const char* loss_of(KEL& object) {
    switch (object.getType()) {
    case KELKind_String:
        return std::strchr(object.toString(), '"') != nullptr
                   ? "text cannot hold a String with a double quote"
                   : nullptr;
    case KELKind_Double: {
        // A Double has a whole part of 32 bits in text, and is rounded to six decimals.
        constexpr double beyond = 2147483647.9999995;
        return std::fabs(object.toDouble()) < beyond
                   ? nullptr
                   : "text cannot hold a Double of 2147483648 or more, or one that is no number";
    }
    case KELKind_MemBlock:
        return "text cannot hold the bytes of a memory block";
    default:
        return nullptr;
    }
}

} // namespace detail

/// Returns all that a text file would not give back: the path of each such value, and the reason.
/// Doubles are rounded to six decimals, which does not count. A container in several places is
/// looked at once. to_text refuses such values, and so do save, save_atomically and append in text.
/// << shows them.
inline std::vector<std::string> lost_in_text(const value& root) {
    return detail::complaints_about(root, SIZE_MAX,
                                    [](KEL& each) { return detail::loss_of(each); });
}

namespace detail {

/// Refuses a value that text would not give back.
/// \throws io_error with the path of the first such value inside
inline void require_no_losses(const value& content, const std::string& name) {
    const std::vector<std::string> losses =
        complaints_about(content, 1, [](KEL& each) { return loss_of(each); });
    if (!losses.empty()) {
        throw io_error(name, 0, losses.front() + "; binary can");
    }
}

/// Returns the content of a file that holds a value.
/// \throws io_error for a value that cannot be written, or not be read again
/// \throws malformed for what reading within these limits refuses
inline std::string file_image(const value& content, format chosen, const std::string& name,
                              const limits& allowed = {}) {
    require_within(allowed, content, name);
    if (chosen == format::text) {
        require_no_losses(content, name);
    }
    std::string made = image(content, chosen, name);
    require_bytes(allowed, made.size(), name);
    return made;
}

} // namespace detail

/// Returns the value as text, without a final line end, and "null" for null. from_text gives the
/// value back, apart from the decimals of Doubles.
/// \throws io_error for what text would not give back (lost_in_text), a selector, a value that
///         contains itself, and a text of 2 GiB or more
/// \throws malformed for what from_text within these limits refuses
inline std::string to_text(const value& content, const limits& allowed = {}) {
    detail::require_within(allowed, content, {});
    detail::require_no_losses(content, {});
    std::string text = detail::text_without_end(content);
    detail::require_bytes(allowed, text.size(), {});
    return text;
}

/// Returns the value in binary.
/// \throws io_error for null and for the kinds without a binary form
/// \throws malformed for what from_binary within these limits refuses
inline std::string to_binary(const value& content, const limits& allowed = {}) {
    return detail::file_image(content, format::binary, {}, allowed);
}
} // namespace v1
} // namespace kel
