/// \file
/// JEnumeration: the runtime's iteration interface.
#pragma once

#include <kel/JObject.h>

/// One walk over a list of objects. nextElement is constant so that a class which also hands out
/// strings can have a nextElement of its own beside it; the cursor is the walk's own affair.
class JEnumeration : public virtual JObject {
public:
    /// True when nextElement has something left.
    virtual bool hasMoreElements() const = 0;
    /// The next object with one reference for the caller. Ask hasMoreElements first.
    virtual JObject* nextElement() const = 0;
};
