/// \file
/// GivenIdentities: the identities that come from a file.
#pragma once

#include "Document.h"
#include "Input.h"

#include <unordered_set>

namespace kel::tool {

/// The values whose identity the file gives. All others draw one afresh in every run, which says
/// nothing about the file.
class GivenIdentities {
public:
    /// \param format the format that the document was read from
    /// \param again the same content, read once more: a value of a text has an identity of the file
    ///        if it has the same one in both documents; null for the other formats
    GivenIdentities(const Document& document, Format format, const Document* again);

    /// Returns whether the identity of the value comes from the file.
    bool contains(const KEL& value) const { return areAllGiven_ || given_.contains(&value); }

private:
    void compare(KEL* root, KEL* again);

    bool areAllGiven_;
    std::unordered_set<const KEL*> given_;
    std::unordered_set<const KEL*> met_; ///< the containers that were visited
};

} // namespace kel::tool
