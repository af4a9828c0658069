/// \file
/// KEL_guid: a 128-bit GUID value, independent of the value's own identity as a value.
#pragma once

#include <kel/KEL.h>

class KEL_guid;

/// Typed access to a guid. The setters from other types convert by the rules of that type's own
/// conversions and return this value, so calls can be chained. Every setter marks the value changed
/// and notifies its observers once.
class KELInterface_guid_V1 {
public:
    /// The value, copied into out; returns out.
    virtual JHashCode& getValue(JHashCode& out) const = 0;
    /// Replaces the value.
    virtual void setValue(const JHashCode& value) = 0;
    /// 1 or 0 in the lowest word. Returns this value, borrowed.
    virtual KEL_guid* setBoolean(bool value) = 0;
    /// The number in the lowest word. Returns this value, borrowed.
    virtual KEL_guid* setInt(int32_t value) = 0;
    /// As an Int from the same number. Returns this value, borrowed.
    virtual KEL_guid* setDouble(double value) = 0;
    /// The leading decimal integer in the lowest word. Null is ignored. Returns this value,
    /// borrowed.
    virtual KEL_guid* setString(const char* text) = 0;
    /// The value itself. Returns this value, borrowed.
    virtual KEL_guid* setguid(const JHashCode& value) = 0;

protected:
    ~KELInterface_guid_V1() = default;
};

/// A 128-bit GUID value, independent of the value's own identity. Kind 4.
class KEL_guid : public virtual KEL, public virtual KELInterface_guid_V1 {
protected:
    ~KEL_guid() = default;
};

/// A new guid with the given value, count 1, owned by the caller; null when out of memory.
KEL_API KEL_guid* KEL_CALL CreateKELGuid(KELGuid value);

/// A new guid whose value is all zero, count 1, owned by the caller; null when out of memory. No
/// GUID is drawn for the value.
KEL_API KEL_guid* KEL_CALL CreateKELGuid();
