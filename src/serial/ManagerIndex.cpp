#include "serial/ManagerIndex.h"

#include "meta/KEL_Manager_Impl.h"
#include "values/ChildCursor.h"

namespace kel {

ManagerIndex::ManagerIndex(const KEL_Manager_Impl& manager) {
    ChildCursor cursor(manager);
    while (cursor.next()) {
        enter(cursor.value, cursor.index);
    }
}

void ManagerIndex::enter(KEL_Impl* element, int32_t place) {
    if (element->identity().isZero()) {
        zeroPlace_ = place;
        return;
    }
    places_[element] = place;
    entries_.put(element->identity(), element);
}

int32_t ManagerIndex::placeOf(const JHashCode& identity) const {
    if (identity.isZero()) {
        return zeroPlace_;
    }
    const KEL_Impl* element = entries_.find(identity);
    return element == nullptr ? -1 : places_.at(element);
}

} // namespace kel
