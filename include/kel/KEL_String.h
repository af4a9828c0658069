/// \file
/// KEL_String: text as a value.
#pragma once

#include <kel/KEL.h>

class KEL_String;

/// Operations of a String. The setters from other types store the text form of that type. They
/// return this value, borrowed, so calls can be chained. Every setter marks the value changed and
/// notifies its observers once.
class KELInterface_String_V1 {
public:
    /// Returns the characters, owned by the value and valid until it changes. Never returns null.
    virtual const char* getValue() const = 0;
    /// Replaces the text with a copy of the given one. Null is ignored.
    virtual void setValue(const char* text) = 0;
    /// Stores "true" or "false". Returns this value, borrowed.
    virtual KEL_String* setBoolean(bool value) = 0;
    /// Stores the number in decimal. Returns this value, borrowed.
    virtual KEL_String* setInt(int32_t value) = 0;
    /// Stores the number with six decimals. Returns this value, borrowed.
    virtual KEL_String* setDouble(double value) = 0;
    /// Stores a copy of text. Null is ignored. Returns this value, borrowed.
    virtual KEL_String* setString(const char* text) = 0;
    /// Stores the 36 characters of the GUID layout. Returns this value, borrowed.
    virtual KEL_String* setguid(const JHashCode& value) = 0;
    /// Returns the character at index, counted from 0. Returns NUL for a negative index.
    /// \throws KELArrayIndexOutOfBoundsException "Attemping to reference past end of string."
    virtual char getChar(int32_t index) const = 0;

protected:
    ~KELInterface_String_V1() = default;
};

/// A null-terminated string of bytes. The library gives them no encoding. Kind 6.
class KEL_String : public virtual KEL, public virtual KELInterface_String_V1 {
protected:
    ~KEL_String() = default;
};

/// Returns a new String with a copy of text (empty for null) and count 1, owned by the caller.
/// Returns null when out of memory.
KEL_API KEL_String* KEL_CALL CreateKELString(const char* text);
