/// \file
/// KEL_Int: a signed 32-bit integer as a value.
#pragma once

#include <kel/KEL.h>

class KEL_Int;

/// Typed access to an Int. The setters from other types convert by the rules of that type's own
/// conversions and return this value, so calls can be chained. Every setter marks the value changed
/// and notifies its observers once.
class KELInterface_Int_V1 {
public:
    /// The value.
    virtual int32_t getValue() const = 0;
    /// Replaces the value.
    virtual void setValue(int32_t value) = 0;
    /// 1 or 0. Returns this value, borrowed.
    virtual KEL_Int* setBoolean(bool value) = 0;
    /// The value itself. Returns this value, borrowed.
    virtual KEL_Int* setInt(int32_t value) = 0;
    /// Truncated toward zero through 64 bits, low 32 bits; 0 for what does not fit. Returns this
    /// value, borrowed.
    virtual KEL_Int* setDouble(double value) = 0;
    /// The leading decimal integer, saturated; 0 for none. Null is ignored. Returns this value,
    /// borrowed.
    virtual KEL_Int* setString(const char* text) = 0;
    /// Its intValue. Returns this value, borrowed.
    virtual KEL_Int* setguid(const JHashCode& value) = 0;

protected:
    ~KELInterface_Int_V1() = default;
};

/// A signed 32-bit integer. Kind 1.
class KEL_Int : public virtual KEL, public virtual KELInterface_Int_V1 {
protected:
    ~KEL_Int() = default;
};

/// A new Int with the given value, count 1, owned by the caller; null when out of memory.
KEL_API KEL_Int* KEL_CALL CreateKELInt(int32_t value);
