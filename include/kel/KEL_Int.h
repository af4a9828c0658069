/// \file
/// KEL_Int: a signed 32-bit integer as a value.
#pragma once

#include <kel/KEL.h>

class KEL_Int;

/// Operations of an Int. The setters from other types convert by the rules of that type's own
/// conversions. They return this value, borrowed, so calls can be chained. Every setter marks the
/// value changed and notifies its observers once.
///
/// \par Failures
/// Only what an observer throws.
class KELInterface_Int_V1 {
public:
    /// Returns the value.
    virtual int32_t getValue() const = 0;
    /// Replaces the value.
    virtual void setValue(int32_t value) = 0;
    /// Stores 1 or 0. Returns this value, borrowed.
    virtual KEL_Int* setBoolean(bool value) = 0;
    /// Stores value. Returns this value, borrowed.
    virtual KEL_Int* setInt(int32_t value) = 0;
    /// Truncates value toward zero through 64 bits and stores the low 32 bits, or 0 if it does not
    /// fit. Returns this value, borrowed.
    virtual KEL_Int* setDouble(double value) = 0;
    /// Stores the leading decimal integer, saturated, or 0 if there is none. Null is ignored.
    /// Returns this value, borrowed.
    virtual KEL_Int* setString(const char* text) = 0;
    /// Stores value's intValue. Returns this value, borrowed.
    virtual KEL_Int* setguid(const JHashCode& value) = 0;

protected:
    ~KELInterface_Int_V1() = default;
};

/// A signed 32-bit integer. Kind 1.
class KEL_Int : public virtual KEL, public virtual KELInterface_Int_V1 {
protected:
    ~KEL_Int() = default;
};

/// Returns a new Int with the given value and count 1, owned by the caller. Returns null when out
/// of memory.
KEL_API KEL_Int* KEL_CALL CreateKELInt(int32_t value);
