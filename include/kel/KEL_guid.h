/// \file
/// KEL_guid: a 128-bit GUID as a value.
#pragma once

#include <kel/KEL.h>

class KEL_guid;

/// Operations of a guid. The setters from other types convert by the rules of that type's own
/// conversions. They return this value, borrowed, so calls can be chained. Every setter marks the
/// value changed and notifies its observers once.
///
/// \par Failures
/// Only what an observer throws.
class KELInterface_guid_V1 {
public:
    /// Copies the value into out and returns out.
    virtual JHashCode& getValue(JHashCode& out) const = 0;
    /// Replaces the value.
    virtual void setValue(const JHashCode& value) = 0;
    /// Stores 1 or 0 in the lowest word. Returns this value, borrowed.
    virtual KEL_guid* setBoolean(bool value) = 0;
    /// Stores the number in the lowest word. Returns this value, borrowed.
    virtual KEL_guid* setInt(int32_t value) = 0;
    /// Converts value as KEL_Int::setDouble does and stores the result in the lowest word. Returns
    /// this value, borrowed.
    virtual KEL_guid* setDouble(double value) = 0;
    /// Stores the leading decimal integer in the lowest word. Null is ignored. Returns this value,
    /// borrowed.
    virtual KEL_guid* setString(const char* text) = 0;
    /// Stores value. Returns this value, borrowed.
    virtual KEL_guid* setguid(const JHashCode& value) = 0;

protected:
    ~KELInterface_guid_V1() = default;
};

/// A 128-bit GUID value, independent of the value's own identity. Kind 4.
class KEL_guid : public virtual KEL, public virtual KELInterface_guid_V1 {
protected:
    ~KEL_guid() = default;
};

/// Returns a new guid with the given value and count 1, owned by the caller. Returns null when out
/// of memory.
KEL_API KEL_guid* KEL_CALL CreateKELGuid(KELGuid value);

/// Returns a new guid whose value is all zero, with count 1, owned by the caller. Returns null when
/// out of memory. The value is not a fresh GUID.
KEL_API KEL_guid* KEL_CALL CreateKELGuid();
