/// \file
/// StructHeader: the items between a struct's brace and its first variable.
#pragma once

#include "serial/text/TextSource.h"

#include <kel/JHashCode.h>
#include <kel/KELKind.h>
#include <optional>

class KEL_Impl;

namespace kel {

/// The header of a struct: its kind and, if given, its identity. If an item is repeated, the last
/// one counts.
class StructHeader {
public:
    /// Makes an empty value of a kind. If own is null, the value draws its own identity.
    using Make = KEL_Impl* (*)(const JHashCode* own, const JHashCode& inner);

    /// Reads the header items after the brace and leaves the input before anything else.
    /// \throws KELIOException for a syntax error, KELEOFException for an end, both with the line
    explicit StructHeader(TextSource& source);

    /// Returns the identity that the header gives.
    const std::optional<JHashCode>& identity() const { return identity_; }

    /// Makes a struct, or a value built on one; the caller owns it. A kind built on a struct has
    /// the header's identity for its inner struct and the given one for itself. If there is only
    /// one of the two, it serves both.
    KEL_Impl* make(const std::optional<JHashCode>& given) const;

private:
    void readKind(TextSource& source);

    Make make_;
    std::optional<JHashCode> identity_;
};

} // namespace kel
