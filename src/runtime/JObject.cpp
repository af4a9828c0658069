#include <kel/JException.h>

#include "platform/Guid.h"

namespace {

JHashCode drawIdentity() {
    JHashCode identity;
    if (!kel::platform::createGuid(identity)) {
        // The exception is an object too, and drawing its identity would fail in the same way.
        throw JException(JHashCode(), "Cannot create hash code.");
    }
    return identity;
}

} // namespace

JObject::JObject() : refCount_(1), hashCode_(drawIdentity()), identityGiven_(false) {}

JObject::JObject(IdentityLater) : refCount_(1), identityGiven_(false) {
    if (kel::platform::isGuidAssured()) {
        marks_ = identityDueMark;
    } else {
        hashCode_ = drawIdentity();
        // On most platforms the first one opens the source, and later ones are assured.
    }
}

void JObject::drawDueIdentity() const {
    kel::platform::createAssuredGuid(hashCode_);
    setMark(identityDueMark, false);
}
