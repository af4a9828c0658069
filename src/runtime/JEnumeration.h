/// \file
/// JEnumeration: the runtime's iteration interface.
#pragma once

#include <kel/JObject.h>

/// A walk over a list of objects. nextElement is constant so that a class that also hands out
/// strings can have its own nextElement beside it. The cursor is the walk's internal state.
class JEnumeration : public virtual JObject {
public:
    /// Returns whether nextElement has another object.
    virtual bool hasMoreElements() const = 0;
    /// Returns the next object with one reference for the caller. Call hasMoreElements first.
    virtual JObject* nextElement() const = 0;
};
