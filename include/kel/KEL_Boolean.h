/// \file
/// KEL_Boolean: a truth value as a value.
#pragma once

#include <kel/KEL.h>

class KEL_Boolean;

/// Operations of a Boolean. The setters from other types convert by the rules of that type's own
/// conversions. They return this value, borrowed, so calls can be chained. Every setter marks the
/// value changed and notifies its observers once.
///
/// \par Failures
/// Only what an observer throws.
class KELInterface_Boolean_V1 {
public:
    /// Returns the value.
    virtual bool getValue() const = 0;
    /// Replaces the value.
    virtual void setValue(bool value) = 0;
    /// Stores value. Returns this value, borrowed.
    virtual KEL_Boolean* setBoolean(bool value) = 0;
    /// Stores true only for 1. Returns this value, borrowed.
    virtual KEL_Boolean* setInt(int32_t value) = 0;
    /// Stores true only for 1.0. Returns this value, borrowed.
    virtual KEL_Boolean* setDouble(double value) = 0;
    /// Stores true if text has any characters. Null is ignored. Returns this value, borrowed.
    virtual KEL_Boolean* setString(const char* text) = 0;
    /// Stores true if value's intValue is not 0. Returns this value, borrowed.
    virtual KEL_Boolean* setguid(const JHashCode& value) = 0;

protected:
    ~KELInterface_Boolean_V1() = default;
};

/// A truth value. Kind 2.
class KEL_Boolean : public virtual KEL, public virtual KELInterface_Boolean_V1 {
protected:
    ~KEL_Boolean() = default;
};

/// Returns a new Boolean with the given value and count 1, owned by the caller. Returns null when
/// out of memory.
KEL_API KEL_Boolean* KEL_CALL CreateKELBoolean(bool value);
