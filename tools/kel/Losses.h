/// \file
/// Losses: the places of a document that a format cannot carry.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kel::tool {

/// One place that a format cannot carry.
struct Loss {
    size_t root; ///< number of the root value, from 0
    std::string path;
    const char* reason;
};

/// Counts losses and remembers the first ones in full. Paths of the others are never built.
class Losses {
public:
    /// How many losses are remembered.
    static constexpr size_t listed = 10;

    /// Adds a loss. pathOf() builds its path and is called only for the first ones; the reason has
    /// to be a literal.
    template <class PathOf> void add(size_t root, const char* reason, const PathOf& pathOf) {
        if (first_.size() < listed) {
            first_.push_back({root, pathOf(), reason});
        }
        ++count_;
    }

    uint64_t count() const { return count_; }
    const std::vector<Loss>& first() const { return first_; }

private:
    std::vector<Loss> first_;
    uint64_t count_ = 0;
};

/// The heading and the first losses, a line for each, then how many there are beyond them.
std::string describe(const Losses& losses, const std::string& heading, size_t rootCount);

} // namespace kel::tool
