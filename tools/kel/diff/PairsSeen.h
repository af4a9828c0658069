/// \file
/// The pairs of containers that a comparison has seen, which makes it end.
#pragma once

#include "document/Values.h"

#include <cstddef>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kel::tool {

/// Remembers pairs of containers without cycles.
class PairsSeen {
public:
    struct Result {
        bool areNew; ///< whether one of the two was in no pair before, so that the pair was added
        std::optional<size_t> first; ///< the place of the same pair, if it was added before
    };

    /// Adds the pair if one of the two is new. The number of pairs is therefore at most the number
    /// of containers.
    Result add(const KEL& before, const KEL& after, size_t place);

private:
    std::unordered_set<const KEL*> before_;
    std::unordered_set<const KEL*> after_;
    std::map<std::pair<const KEL*, const KEL*>, size_t> pairs_;
};

/// Keeps containers in classes whose members are equal unless a difference is found elsewhere.
/// Equality is transitive, so two members of one class need not be compared again, and the number
/// of comparisons is less than the number of containers.
class EqualClasses {
public:
    /// Puts two containers into one class. \return false if they already are in one
    bool merge(const KEL& a, const KEL& b);

private:
    struct Member {
        size_t parent; ///< its own index in the member that represents the class
        int rank;
    };

    size_t classOf(const KEL& container);

    std::unordered_map<const KEL*, size_t> places_;
    std::vector<Member> members_;
};

} // namespace kel::tool
