/// \file
/// complaints_about: the values of a tree that something cannot be done with, by their paths.
#pragma once

#include <kel/cpp/child_walk.hpp>

#include <unordered_set>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the path and the reason for the first values of a tree that have one, at most so many. A
/// container in several places is looked into once.
/// \param reason_for returns why not, as text or null, for a value that is not null
template <class Reason>
std::vector<std::string> complaints_about(const value& root, std::size_t most,
                                          const Reason& reason_for) {
    std::vector<std::string> found;
    std::vector<child_walk> open;
    std::unordered_set<KEL*> seen; // containers can be shared, and contain themselves
    KEL* at = root.raw();
    while (found.size() < most) {
        if (at != nullptr) {
            if (const char* reason = reason_for(*at)) {
                std::string path;
                for (const child_walk& each : open) {
                    each.append_step(path);
                }
                found.push_back(printable(lead(path) + reason));
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
} // namespace v1
} // namespace kel
