/// \file
/// PackedContainer: the records of a container that is still being filled.
#pragma once

#include "document/OutputBytes.h"

#include <string_view>
#include <vector>

namespace kel::tool {

/// Makes the record of a large container out of records of its parts, so that the values of a part
/// need not wait for the others. The elements of an array keep their order. The variables of a
/// struct are put in order of their names, and the last of several with one name is kept. Nothing
/// is copied, so the caller must keep all bytes alive.
class PackedContainer {
public:
    explicit PackedContainer(bool isStruct) : isStruct_(isStruct) {}

    /// Adds elements: the record of the container itself while it held only these.
    void addPart(char* record, size_t size);

    /// Adds one element: its record, and before that, for a struct, its name and a NUL.
    void addElement(Pieces element);

    /// Returns the record of the container with everything that was added. There must be a part.
    Pieces complete();

private:
    /// Elements that follow each other.
    struct Run {
        std::string_view part; ///< the record of a part, or empty
        Pieces element;        ///< the element, if there is no part
    };

    Pieces arrayContents();
    Pieces structContents();

    bool isStruct_;
    char* header_ = nullptr; ///< of the first part, and in the end of the whole container
    std::vector<Run> runs_;
};

} // namespace kel::tool
