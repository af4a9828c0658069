/// \file
/// PlaceTracker: the place in a document that a scan of its text has reached.
#pragma once

#include "document/Document.h"
#include "findings/ValueOffsets.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Follows a scan of text or JSON through the values that were read from it. It finds repeated
/// names, knows the path of each place, and stores the offsets of the values that are wanted. The
/// content and the document must stay alive and unchanged.
class PlaceTracker {
public:
    enum class Shape {
        array,
        keys,  ///< the first array in an index list
        items, ///< the second one
        structure,
        manager,
        indexList
    };

    /// \param document the values, or null if only names are tracked
    /// \param wanted gets the offsets that it requests
    /// \param found gets the repeated names
    PlaceTracker(const Document* document, ValueOffsets& wanted, Findings& found)
        : document_(document), wanted_(wanted), found_(found) {}

    /// Returns whether a container is open.
    bool isInContainer() const { return !levels_.empty(); }

    /// Returns the shape of the innermost container, which must exist.
    Shape shape() const { return levels_.back().shape; }

    /// Begins a variable of a struct.
    /// \param at the offset of the name
    void beginVariable(std::string_view name, size_t at) {
        beginNamed(name, at, "a repeated name; only its last value is kept");
    }

    /// Begins an entry of a manager. \param identity in GUID layout, in upper case
    void beginEntry(std::string_view identity, size_t at) {
        beginNamed(identity, at, "a repeated identity; only its last value is kept");
    }

    /// States that the value at the current place begins at the offset. Call it once for each value
    /// that is written there, also for containers, but not for null or for a reference.
    void beginValue(size_t at);

    /// Opens a container as the value at the current place. An array in an index list becomes its
    /// keys or its items.
    void open(Shape shape);

    /// Closes the innermost container and completes it as a value.
    void close();

    /// Completes the value at the current place.
    void complete();

    /// Passes over a null. \param isCounted whether paths count it as an element of an array
    void passNull(bool isCounted);

    /// Returns the path of the current place, with the number of its root value if there are
    /// several. Returns nothing if only names are tracked.
    std::string path() const;

private:
    /// The names of a struct's variables, or the identities in a manager, with their offsets.
    using Names = std::map<std::string, size_t, std::less<>>;

    struct Level {
        Shape shape;
        KEL* value;                        ///< null where the document has another value
        uint64_t number = 0;               ///< of the current element in paths
        int32_t index = 0;                 ///< of the current element in the array
        std::string_view name = {};        ///< of the current variable or entry
        std::optional<size_t> at = {};     ///< the offset of the name
        std::unique_ptr<Names> names = {}; ///< null before the first name
    };

    KEL* valueHere() const;
    void beginNamed(std::string_view name, size_t at, const char* repeated);

    const Document* document_;
    ValueOffsets& wanted_;
    Findings& found_;
    size_t root_ = 0;
    std::vector<Level> levels_;
};

} // namespace kel::tool
