/// \file
/// PlainData: what takes the place of values that only text has a form for.
#pragma once

#include "Format.h"
#include "Values.h"

#include <unordered_map>

namespace kel::tool {

/// Exchanges values for plain data, from the outside inwards:
///
/// - a manager for an array of its values
/// - an index list for an array of its pairs, each an array of key and item
/// - a checked struct for a struct of its variables, without "@desc"
/// - a descriptor for a struct of its variables
/// - for binary a guid for a String
///
/// What was exchanged holds the values inside as they are. A container that sits in several places
/// becomes one and the same value in all of them.
class PlainData {
public:
    explicit PlainData(Format target) : target_(target) {}

    /// True when the value has to go; sets what comes in its place.
    bool exchange(KEL& value, Value& replacement);

private:
    /// The original stays referred to, so that no other value takes its address meanwhile.
    struct Exchange {
        Value original;
        Value plain;
    };

    Format target_;
    std::unordered_map<const KEL*, Exchange> exchanges_;
};

} // namespace kel::tool
