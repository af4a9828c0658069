/// \file
/// Losses: the places of a document that a format cannot carry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kel::tool {

/// A place that a format cannot carry.
struct Loss {
    size_t root; ///< number of the root value, from 0
    std::string path;
    const char* reason;
    std::optional<size_t> offset = {}; ///< in binary, if it is known
};

/// Counts losses and remembers the first ones in full. The paths of the others are never built.
class Losses {
public:
    /// The number of losses that messages list.
    static constexpr size_t listed = 10;

    /// Remembers as many losses as messages list.
    Losses() = default;

    /// \param remembered the number of losses to remember
    explicit Losses(size_t remembered) : remembered_(remembered) {}

    /// Adds a loss. pathOf() builds its path and is called only for the first ones. The reason must
    /// be a literal. The offset is that of its record in binary.
    template <class PathOf>
    void add(size_t root, const char* reason, const PathOf& pathOf,
             std::optional<size_t> offset = {}) {
        if (first_.size() < remembered_) {
            first_.push_back({root, pathOf(), reason, offset});
        }
        ++count_;
    }

    uint64_t count() const { return count_; }
    const std::vector<Loss>& first() const { return first_; }

private:
    size_t remembered_ = listed;
    std::vector<Loss> first_;
    uint64_t count_ = 0;
};

/// Returns the heading, a line for each of the first losses, and the number of further ones.
std::string describe(const Losses& losses, const std::string& heading, size_t rootCount);

/// Returns the same under the heading "NAME: 3 places WHAT:".
/// \param what such as "cannot be written as json", right for one place and for several
std::string describePlaces(const Losses& losses, const std::string& name, const std::string& what,
                           size_t rootCount);

} // namespace kel::tool
