#include "serial/text/ManagerIndex.h"

#include "meta/KEL_Manager_Impl.h"
#include "values/ChildCursor.h"

namespace kel {

ManagerIndex::ManagerIndex(const KEL_Manager_Impl& manager) {
    ChildCursor cursor(manager);
    while (cursor.next()) {
        enter(cursor.value->identity(), cursor.index);
    }
}

void ManagerIndex::enter(const JHashCode& identity, int32_t place) {
    places_.append(place);
    identities_.link(identities_.append(identity));
}

int32_t ManagerIndex::placeOf(const JHashCode& identity) const {
    const uint32_t number = identities_.find(identity);
    return number == IdentityIndex::none ? -1 : places_[number];
}

} // namespace kel
