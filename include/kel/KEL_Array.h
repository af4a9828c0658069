/// \file
/// KEL_Array: an ordered list of values.
#pragma once

#include <kel/KEL_Boolean.h>
#include <kel/KEL_Double.h>
#include <kel/KEL_Int.h>
#include <kel/KEL_Observable.h>
#include <kel/KEL_String.h>
#include <kel/KEL_guid.h>

class KEL_Array;

/// Operations of an array. Indices count from 0. Elements are shared, never copied: the array holds
/// one reference to each, and one value can be in several places. Every successful change of the
/// array marks it changed and notifies its observers once.
///
/// "Bad index" below means KELArrayIndexOutOfBoundsException "Array index out of bounds."; the
/// array is then unchanged and nobody is notified.
///
/// \par Ownership
/// The array shares the values that it stores: it adds a reference of its own.
class KELInterface_Array_V1 {
public:
    KEL_SLOTS(
        /// Returns the element at index, borrowed: the array keeps its reference. Throws on a bad
        /// index.
        virtual KEL* getVar(int32_t index) = 0;,
        /// Returns the same element from a constant array, borrowed too. The element itself is not
        /// constant. Throws on a bad index.
        virtual KEL* getVar(int32_t index) const = 0;)
    /// Returns the element converted to a Boolean (a Double is true if it truncates to 0). Throws
    /// on a bad index.
    virtual bool getBoolean(int32_t index) const = 0;
    /// Returns the element converted to an Int. Throws on a bad index.
    virtual int32_t getInt(int32_t index) const = 0;
    /// Returns the element converted to a Double. Throws on a bad index.
    virtual double getDouble(int32_t index) const = 0;
    /// Returns the element converted to a String, with one reference for the caller: a new String,
    /// or the element itself if it is a String. Returns null for a kind without a text form, and
    /// when out of memory. Throws on a bad index.
    virtual KEL_String* getString(int32_t index) const = 0;
    /// Copies the element, converted to a GUID, into out and returns out. Throws on a bad index.
    virtual JHashCode& getguid(int32_t index, JHashCode& out) const = 0;

    /// Inserts value at index, from 0 to the count. Null is ignored. Throws on a bad index.
    virtual void insertVar(KEL* value, int32_t index) = 0;
    /// Replaces the element at index with value. Null is ignored. Throws on a bad index. Needs no
    /// memory.
    virtual void setVar(KEL* value, int32_t index) = 0;

    /// Converts text into the element at index, as setVarValue does. Null is ignored.
    virtual void setString(int32_t index, const char* text) = 0;
    /// Converts a GUID into the element at index, as setVarValue does.
    virtual void setguid(int32_t index, const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual void setDouble(int32_t index, float value) = 0;,
        /// Converts a number into the element at index, as setVarValue does.
        virtual void setDouble(int32_t index, double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual void setInt(int32_t index, long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual void setInt(int32_t index, unsigned long value) = 0;,
        /// Converts an integer into the element at index, as setVarValue does.
        virtual void setInt(int32_t index, int32_t value) = 0;)
    /// Converts a truth value into the element at index, as setVarValue does.
    virtual void setBoolean(int32_t index, bool value) = 0;
    /// Assigns value to the element at index, converted into the element's kind. The element
    /// remains the same object. It notifies its own observers; the array's are not notified.
    /// Null, or a value without a form in the element's kind, changes nothing. Throws on a bad
    /// index.
    virtual void setVarValue(int32_t index, const KEL* value) = 0;

    /// Exchanges two elements. Equal indices notify too.
    /// \throws KELArrayIndexOutOfBoundsException "KEL_Array_Impl::swapVars failed. No element at
    ///         specified index."
    virtual void swapVars(int32_t a, int32_t b) = 0;

    /// Appends a new String and returns its index. Returns -1 for null, which changes nothing.
    virtual int32_t addString(const char* text) = 0;
    /// Appends a new guid and returns its index.
    virtual int32_t addguid(const JHashCode& value) = 0;
    KEL_SLOTS(
        /// Forwards a float to the form for a double.
        virtual int32_t addDouble(float value) = 0;,
        /// Appends a new Double and returns its index.
        virtual int32_t addDouble(double value) = 0;)
    KEL_SLOTS(
        /// Forwards the low 32 bits of a long to the form for a 32-bit integer.
        virtual int32_t addInt(long value) = 0;,
        /// Forwards the low 32 bits of an unsigned long to the form for a 32-bit integer.
        virtual int32_t addInt(unsigned long value) = 0;,
        /// Appends a new Int and returns its index.
        virtual int32_t addInt(int32_t value) = 0;)
    /// Appends a new Boolean and returns its index.
    virtual int32_t addBoolean(bool value) = 0;
    /// Appends value, which the array shares, and returns its index. Returns -1 for null, which
    /// changes nothing.
    virtual int32_t addVar(KEL* value) = 0;
    /// Appends the elements of other whose identities are not in the array yet. The arrays share
    /// them. Notifies once for each.
    /// \return 0, or -1 for null
    virtual int32_t addVars(KEL_Array* other) = 0;
    /// Removes the element at index.
    /// \throws KELArrayIndexOutOfBoundsException "KEL_Array::removeVar failed. No element at
    ///         specified index."
    virtual void removeVar(int32_t index) = 0;
    /// Returns true if value is an element, by identity. Returns false for null.
    virtual bool containsVar(const KEL* value) const = 0;
    /// Returns the first index of value, by identity. Returns -1 if there is none, and for null.
    virtual int32_t indexOfVar(const KEL* value) const = 0;
    /// Returns the number of elements.
    virtual int32_t getCount() const = 0;
    /// Removes every element and notifies once, even if the array was empty.
    virtual void removeAllVars() = 0;

protected:
    ~KELInterface_Array_V1() = default;
};

/// An ordered list of values of any kinds. Kind 7.
class KEL_Array : public virtual KEL,
                  public virtual KEL_Observable,
                  public virtual KELInterface_Array_V1 {
protected:
    ~KEL_Array() = default;
};

/// Returns a new empty array with count 1, owned by the caller. Returns null when out of memory.
KEL_API KEL_Array* KEL_CALL CreateKELArray();
