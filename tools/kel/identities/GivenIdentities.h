/// \file
/// GivenIdentities: the identities that an input gives to its values.
#pragma once

#include "document/Input.h"
#include "identities/Identity.h"

#include <string_view>
#include <vector>

namespace kel::tool {

/// Knows which identities come from an input. All others were drawn when its values were made.
class GivenIdentities {
public:
    /// Collects the identities of all records in binary, and all that text spells, also in strings
    /// and comments. A drawn identity is practically never among them. JSON has no identities.
    explicit GivenIdentities(const Content& content);

    /// Returns whether the input has the identity. The zero identity always counts as given.
    bool contains(const Identity& identity) const;

    /// Returns whether the input has the identity of the value.
    bool contains(const KEL& value) const;

private:
    void addRecords(std::string_view records);
    void addSpelled(std::string_view text);

    std::vector<Identity> sorted_;
};

} // namespace kel::tool
