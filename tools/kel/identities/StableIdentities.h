/// \file
/// StableIdentities: identities that depend on the input alone.
#pragma once

#include "identities/GivenIdentities.h"

#include <string>

namespace kel::tool {

/// Gives the values of a binary output identities that depend on the place and the contents of each
/// value alone, so that one input always becomes the same bytes. Identities that the input gave
/// are kept. Values at one place of two files with the same contents get the same identity.
///
/// The identity is a digest with the version and variant of a random GUID. All parts are joined
/// without separators, numbers are little-endian, and words stand for their characters:
///
/// - the place of an element: "place", the place of its container, then "name" and the name, or
///   "index" and the number of the element in 64 bits. Roots are elements of the place zero.
/// - the contents of a container: 16 zero bytes at first. For each element, the digest of "holds
///   value", the contents so far, the element's stable identity and its identity in the output; or
///   of "holds null", the contents so far, the place and 16 zero bytes; or of "holds reference",
///   the contents so far, the place, and the stable identity of the other value, or its place if it
///   is a container around the reference.
/// - the stable identity: "value", the place, the kind in 32 bits, then the payload of a scalar or
///   the contents of a container. As long as the input has this identity too, the digest of "again"
///   and the identity replaces it in the output.
class StableIdentities {
public:
    /// \param content the input, which is not needed later
    explicit StableIdentities(const Content& content) : given_(content) {}

    /// Replaces the identities in records that the library has written, and keeps their references.
    void replaceIn(std::string& records) const;

private:
    GivenIdentities given_;
};

} // namespace kel::tool
