/// \file
/// PlainData: the replacements of values that binary and JSON have no form for.
#pragma once

#include "document/Format.h"
#include "document/Values.h"

#include <unordered_map>
#include <unordered_set>

namespace kel::tool {

/// Exchanges values for plain data, from the outside inwards:
///
/// - a manager for an array of its values
/// - an index list for an array of its pairs, each an array of key and item
/// - a checked struct for a struct of its variables, without "@desc"
/// - a descriptor for a struct of its variables
/// - for binary a guid for a String, and one of the given namesakes for a value of a fresh identity
///   with the same contents
///
/// A replacement holds the inner values unchanged. A value in several places becomes one and the
/// same value in all of them.
class PlainData {
public:
    PlainData(Format target, const std::unordered_set<const KEL*>& namesakes)
        : target_(target), namesakes_(namesakes) {}

    /// Returns whether the value has to be replaced, and sets the replacement.
    bool exchange(KEL& value, Value& replacement);

private:
    /// The original is kept alive, so that no other value gets its address in the meantime.
    struct Exchange {
        Value original;
        Value plain;
    };

    Value plainFormOf(KEL& value) const;

    Format target_;
    const std::unordered_set<const KEL*>& namesakes_;
    std::unordered_map<const KEL*, Exchange> exchanges_;
};

} // namespace kel::tool
