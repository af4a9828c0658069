/// \file
/// Finder: finds values by their names, contents and kinds.
#pragma once

#include "document/TreeCursor.h"
#include "find/Pattern.h"
#include "parts/RootVisitor.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace kel::tool {

/// What a Finder looks for.
struct Sought {
    std::optional<Pattern> pattern; ///< for names and scalars, if there is one
    bool inNames = true;            ///< whether names are compared with the pattern
    bool inValues = true;           ///< whether scalars are compared with it
    std::optional<int32_t> kind;    ///< that the value must have; kindOfNull for null
    bool everyPlace = false;        ///< whether a shared value is found at each of its places
};

/// Finds values in the root values of an input. A value in several places is found at its first
/// one, unless every place counts or its name there matches. A value that contains itself is not
/// entered inside itself.
class Finder : public RootVisitor {
public:
    /// Gets every match: the cursor at the value, and the value's path with the number of its root
    /// value if there are several.
    using Report = std::function<void(const TreeCursor& cursor, const std::string& path)>;

    /// \param report null to count only
    Finder(Sought sought, Report report) : sought_(std::move(sought)), report_(std::move(report)) {}

    void begin(bool hasSeveralRoots, bool isTree) override;
    void visit(const RootPart& part) override;

    /// Returns the number of matches so far, or the greatest number if there are more.
    uint64_t count() const { return count_; }

    bool hasSeveralRoots() const { return hasSeveralRoots_; }

private:
    /// A container that was entered.
    struct Met {
        bool isOpen = true;
        uint64_t matches = 0; ///< in it, once it has been left
    };

    void arrive(const TreeCursor& cursor, bool isNew, size_t root);
    bool enters(KEL* container);
    bool isMatch(const TreeCursor& cursor, bool isNew);
    void add(uint64_t matches);

    Sought sought_;
    Report report_;
    uint64_t count_ = 0;
    bool hasSeveralRoots_ = false;
    bool isTree_ = false;
    std::unordered_map<const KEL*, Met> met_; ///< the values that were visited, unless it is a tree
    std::vector<uint64_t> countBefore_;       ///< the matches before each open container
};

} // namespace kel::tool
