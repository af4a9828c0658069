/// \file
/// ManagerIndex: the places of a manager's elements.
#pragma once

#include "serial/IdentityIndex.h"

class KEL_Manager_Impl;

namespace kel {

/// Finds the place of an element by its identity in constant time. Use it to fill a large manager,
/// which itself would search from its beginning for each element.
class ManagerIndex {
public:
    /// Enters the elements that the manager already holds.
    explicit ManagerIndex(const KEL_Manager_Impl& manager);

    /// Enters the place of an element whose identity has not been entered.
    void enter(const JHashCode& identity, int32_t place);

    /// Returns the place of the element with this identity, or -1 if there is none.
    int32_t placeOf(const JHashCode& identity) const;

private:
    IdentityIndex identities_;
    BlockList<int32_t> places_; // by the number of the identity
};

} // namespace kel
