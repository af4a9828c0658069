/// \file
/// ContentDigests: digests of the contents of values.
#pragma once

#include "diff/KeyedHash.h"
#include "document/Document.h"

#include <vector>

namespace kel::tool {

/// Gives values digests of their contents. Two values without cycles have the same digest if they
/// have the same kinds and equal contents. The chance that others have it too is negligible,
/// whatever the files hold. Doubles are equal as the library compares them, so there is one zero
/// and one not-a-number. The identities of a manager's values belong to its contents.
///
/// Every container is visited once, however often it is shared. The values must stay alive and
/// unchanged.
class ContentDigests {
public:
    ContentDigests();

    /// Visits all containers of the document, and makes their digests.
    void add(const Document& document);

    /// Returns the digest of a value of an added document, or of null. Of a container with a cycle
    /// in it, only the values without cycles count, and the kinds of the others.
    KeyedDigest of(KEL* value) const;

    /// Returns whether the digest stands for the whole contents of its value. It does not for a
    /// container with a cycle in it.
    static bool isExact(const KeyedDigest& digest) { return (digest.low & cycleMark) == 0; }

private:
    /// The bit that the digest of a container with a cycle in it has, and no other digest.
    static constexpr uint64_t cycleMark = 1;

    /// A container and its digest.
    struct Slot {
        const KEL* container = nullptr; ///< null for a free slot
        KeyedDigest digest;
    };

    void visit(KEL* root);
    static KeyedDigest marked(KeyedDigest digest, bool hasCycle);
    static void addScalar(KeyedHash& hash, KEL& scalar);
    static void addKnown(KeyedHash& hash, const KEL& container, const KeyedDigest& digest);
    const Slot& slotOf(const KEL& container) const;
    Slot& slotOf(const KEL& container);
    void grow();

    HashKey key_;
    std::vector<Slot> slots_; ///< their number is a power of two, and at most half of them are used
    size_t count_ = 0;
};

} // namespace kel::tool
