/// \file
/// Changes: what is different between two documents.
#pragma once

#include "document/Values.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kel::tool {

/// A step from a container of one document to a value in it, and the step from its counterpart in
/// the other document to the counterpart of the value.
struct PairedStep {
    enum class Kind {
        root,     ///< to a root value, by its number
        variable, ///< to a variable of a struct, by its name
        element,  ///< to an element of an array, by its number
        key,      ///< to the key of a pair of an index list, by its number
        item,     ///< to the item of a pair of an index list, by its number
        managed   ///< to a value of a manager, by its identity
    };

    Kind kind;
    const char* name = nullptr;   ///< of a variable, borrowed from a struct
    const KEL* managed = nullptr; ///< the value of a manager, borrowed
    size_t before = 0;            ///< the number in the first document
    size_t after = 0;             ///< the number in the second document
};

/// The places of the changes in both documents. Places are kept as steps from other places, because
/// the paths of a deep tree would need far more memory than the tree.
class PlacePairs {
public:
    /// The place around the root values.
    static constexpr size_t outside = SIZE_MAX;

    /// \param before how many root values the first document has \param after the second one
    PlacePairs(size_t before, size_t after) : rootsBefore_(before), rootsAfter_(after) {}

    /// Adds the place that the step leads to from another place. \return its number
    size_t add(size_t from, const PairedStep& step) {
        links_.push_back({from, step});
        return links_.size() - 1;
    }

    /// Returns the whole path of the place in the first document.
    std::string pathBefore(size_t place) const { return path(place, true); }

    /// Returns the whole path of the place in the second document.
    std::string pathAfter(size_t place) const { return path(place, false); }

private:
    struct Link {
        size_t from;
        PairedStep step;
    };

    std::string path(size_t place, bool isBefore) const;

    size_t rootsBefore_;
    size_t rootsAfter_;
    std::vector<Link> links_;
};

/// One difference. It borrows its values from the documents.
struct Change {
    enum class Kind {
        changed,   ///< another value at the place
        added,     ///< a value that only the second document has
        removed,   ///< a value that only the first document has
        moved,     ///< a value with equal contents that is at another place
        repeated,  ///< the values of another place are also here, with the same changes
        reordered, ///< the same pairs or values of a manager in another order
        sharing,   ///< the place shares its value with another place than before
        identity   ///< the value has another identity
    };

    Kind kind;
    size_t place;
    KEL* before = nullptr;
    KEL* after = nullptr;
    KEL* key = nullptr; ///< of an added or removed pair of an index list
    /// Where a moved value is in the second document. Where repeated changes are listed.
    std::optional<size_t> other = {};
    /// The first places that share the value of this one, or nothing if it shares none.
    std::optional<size_t> sharedBefore = {};
    std::optional<size_t> sharedAfter = {};
    /// For the values that a reordered container has in both documents, in their order in the
    /// second one: their numbers in the first one.
    std::vector<size_t> order = {};
};

/// All differences between two documents, in the order of the first one.
struct Changes {
    PlacePairs places;
    std::vector<Change> list;
};

} // namespace kel::tool
