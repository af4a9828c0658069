/// \file
/// KEL_String: text as a value.
#pragma once

#include <kel/KEL.h>

class KEL_String;

/// Typed access to a String. The setters from other types store the text form of that type and
/// return this value, so calls can be chained. Every setter marks the value changed and notifies
/// its observers once.
class KELInterface_String_V1 {
public:
    /// The characters, owned by the value and valid until it changes; never null.
    virtual const char* getValue() const = 0;
    /// Replaces the text by a copy of the given one. Null is ignored.
    virtual void setValue(const char* text) = 0;
    /// "true" or "false". Returns this value, borrowed.
    virtual KEL_String* setBoolean(bool value) = 0;
    /// The number in decimal. Returns this value, borrowed.
    virtual KEL_String* setInt(int32_t value) = 0;
    /// The number with six decimals. Returns this value, borrowed.
    virtual KEL_String* setDouble(double value) = 0;
    /// The text itself. Null is ignored. Returns this value, borrowed.
    virtual KEL_String* setString(const char* text) = 0;
    /// The 36 characters of the GUID layout. Returns this value, borrowed.
    virtual KEL_String* setguid(const JHashCode& value) = 0;
    /// The character at index, counted from 0. A negative index answers NUL.
    /// \throws KELArrayIndexOutOfBoundsException "Attemping to reference past end of string."
    virtual char getChar(int32_t index) const = 0;

protected:
    ~KELInterface_String_V1() = default;
};

/// A NUL-terminated string of bytes; the library gives them no encoding. Kind 6.
class KEL_String : public virtual KEL, public virtual KELInterface_String_V1 {
protected:
    ~KEL_String() = default;
};

/// A new String with a copy of text (empty for null), count 1, owned by the caller; null when out
/// of memory.
KEL_API KEL_String* KEL_CALL CreateKELString(const char* text);
