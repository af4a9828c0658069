/// \file
/// lost_in_text: what a text file would not give back.
#pragma once

#include <kel/cpp/image.hpp>

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
        constexpr double beyond = 2147483648.0; // a Double has a whole part of 32 bits in text
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
/// looked at once. save, save_atomically and append refuse such values in text. to_text and << show
/// them.
inline std::vector<std::string> lost_in_text(const value& root) {
    return detail::complaints_about(root, SIZE_MAX,
                                    [](KEL& each) { return detail::loss_of(each); });
}

namespace detail {

/// Returns the content of a file that holds a value.
/// \throws io_error for a value that cannot be written, or not be read again
inline std::string file_image(const value& content, format chosen, const std::string& name) {
    if (chosen == format::text) {
        const std::vector<std::string> losses =
            complaints_about(content, 1, [](KEL& each) { return loss_of(each); });
        if (!losses.empty()) {
            throw io_error(name, 0, losses.front() + "; binary can");
        }
    }
    return image(content, chosen, name);
}

} // namespace detail
} // namespace v1
} // namespace kel
