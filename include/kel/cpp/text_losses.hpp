/// \file
/// lost_in_text: what a text file would not give back.
#pragma once

#include <kel/cpp/child_walk.hpp>
#include <kel/cpp/image.hpp>

#include <cstring>
#include <unordered_set>

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

namespace detail {

/// Returns the first losses of a tree in text, at most so many.
inline std::vector<std::string> losses_of(const value& root, std::size_t most) {
    std::vector<std::string> found;
    std::vector<child_walk> open;
    std::unordered_set<KEL*> seen; // containers can be shared, and contain themselves
    KEL* at = root.raw();
    while (found.size() < most) {
        if (at != nullptr) {
            if (const char* loss = loss_of(*at)) {
                std::string path;
                for (const child_walk& each : open) {
                    each.append_step(path);
                }
                found.push_back(lead(path) + loss);
            }
            child_walk inside(at);
            if (inside.is_container() && seen.insert(at).second) {
                open.push_back(inside);
            }
        }
        while (!open.empty() && !open.back().next()) {
            open.pop_back();
        }
        if (open.empty()) {
            break;
        }
        at = open.back().child();
    }
    return found;
}

} // namespace detail

/// Returns all that a text file would not give back: the path of each such value, and the reason.
/// Doubles are rounded to six decimals, which does not count. A container in several places is
/// looked at once. save, save_atomically and append refuse such values in text. to_text and << show
/// them.
inline std::vector<std::string> lost_in_text(const value& root) {
    return detail::losses_of(root, SIZE_MAX);
}

namespace detail {

/// Returns the content of a file that holds a value.
/// \throws io_error for a value that cannot be written, or not be read again
inline std::string file_image(const value& content, format chosen, const std::string& name) {
    if (chosen == format::text) {
        const std::vector<std::string> losses = losses_of(content, 1);
        if (!losses.empty()) {
            throw io_error(name, 0, losses.front() + "; binary can");
        }
    }
    return image(content, chosen, name);
}

} // namespace detail
} // namespace v1
} // namespace kel
