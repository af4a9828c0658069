/// \file
/// ManagerIndex: the places of a manager's elements.
#pragma once

#include "serial/IdentityTable.h"

#include <unordered_map>

class KEL_Manager_Impl;

namespace kel {

/// Finds the place of an element by its identity in constant time, for whoever fills a large
/// manager, which itself would search from its beginning for each.
class ManagerIndex {
public:
    /// Enters the elements that are there.
    explicit ManagerIndex(const KEL_Manager_Impl& manager);

    /// Enters an element, in place of one of the same identity. It is borrowed.
    void enter(KEL_Impl* element, int32_t place);

    /// The place of the element with this identity, -1 when there is none.
    int32_t placeOf(const JHashCode& identity) const;

private:
    IdentityTable entries_;
    std::unordered_map<const KEL_Impl*, int32_t> places_;
    int32_t zeroPlace_ = -1; // the table knows no zero identity, which here is one like others
};

} // namespace kel
