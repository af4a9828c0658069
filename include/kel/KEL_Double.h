/// \file
/// KEL_Double: an IEEE 754 double as a value.
#pragma once

#include <kel/KEL.h>

class KEL_Double;

/// Operations of a Double. The setters from other types convert by the rules of that type's own
/// conversions. They return this value, borrowed, so calls can be chained. Every setter marks the
/// value changed and notifies its observers once.
///
/// \par Failures
/// Only what an observer throws.
class KELInterface_Double_V1 {
public:
    /// Returns the value.
    virtual double getValue() const = 0;
    /// Replaces the value.
    virtual void setValue(double value) = 0;
    /// Stores 1.0 or 0.0. Returns this value, borrowed.
    virtual KEL_Double* setBoolean(bool value) = 0;
    /// Stores the number. Returns this value, borrowed.
    virtual KEL_Double* setInt(int32_t value) = 0;
    /// Stores value. Returns this value, borrowed.
    virtual KEL_Double* setDouble(double value) = 0;
    /// Stores the leading decimal number, or 0.0 if there is none. Null is ignored. Returns this
    /// value, borrowed.
    virtual KEL_Double* setString(const char* text) = 0;
    /// Stores value's intValue. Returns this value, borrowed.
    virtual KEL_Double* setguid(const JHashCode& value) = 0;

protected:
    ~KELInterface_Double_V1() = default;
};

/// An IEEE 754 double. Kind 3.
class KEL_Double : public virtual KEL, public virtual KELInterface_Double_V1 {
protected:
    ~KEL_Double() = default;
};

/// Returns a new Double with the given value and count 1, owned by the caller. Returns null when
/// out of memory.
KEL_API KEL_Double* KEL_CALL CreateKELDouble(double value);
