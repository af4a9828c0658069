/// \file
/// KEL: the operations of every value, whatever its kind.
///
/// An operation that throws has changed nothing, unless an observer threw: then the change is
/// complete and all observers have been called. An operation of a value that runs out of memory
/// throws JOutOfMemoryException by value, unless its comment names another result. Operations that
/// only read, remove, select, exchange or release something need no memory, unless their comments
/// say that they can run out of it.
#pragma once

#include <kel/JHashCode.h>
#include <kel/KELKind.h>

class KEL;

/// Reference count, identity and kind of a value.
class KELInterface_RefCount_V1 {
public:
    /// Adds one reference.
    virtual void addRef() = 0;
    /// Releases one reference. At zero the value deletes itself.
    /// \return the new count
    virtual int32_t release() = 0;
    /// Copies the value's identity into out and returns out.
    virtual JHashCode& getHashCode(JHashCode& out) const = 0;
    /// Returns the kind code, one of KELKind.
    virtual int32_t getType() const = 0;
    /// Returns 1, whatever the real count is. Only release reports the real count.
    virtual int32_t getRefCount() const = 0;

protected:
    ~KELInterface_RefCount_V1() = default;
};

/// Conversions of one value by its own rules. They never throw. A kind without a form of the
/// requested type returns false, 0, 0.0, null or all zero.
class KELInterface_Casting_V1 {
public:
    /// Returns the value as a truth value. A Boolean gives its value. An Int or a Double gives true
    /// only for exactly 1, a guid if toInt is not 0, and a String if it has any characters.
    virtual bool toBoolean() const = 0;
    /// Returns the value as a 32-bit integer. A Double is truncated toward zero through 64 bits and
    /// gives the low 32 bits, or 0 if it does not fit. A guid gives JHashCode::intValue. A String
    /// gives its leading decimal integer, saturated, or 0 if there is none.
    virtual int32_t toInt() const = 0;
    virtual int8_t toSignedChar() const = 0;          ///< toInt, low 8 bits
    virtual uint8_t toUnsignedChar() const = 0;       ///< toInt, low 8 bits
    virtual int16_t toShort() const = 0;              ///< toInt, low 16 bits
    virtual uint16_t toUnsignedShort() const = 0;     ///< toInt, low 16 bits
    virtual uint32_t toUnsignedInt() const = 0;       ///< toInt, the same 32 bits
    virtual long toLong() const = 0;                  ///< toInt
    virtual unsigned long toUnsignedLong() const = 0; ///< toInt, modulo the type's range
    virtual int64_t toInt64() const = 0;              ///< toInt
    virtual uint64_t toUnsignedInt64() const = 0;     ///< toInt, modulo 2 to the 64
    /// Returns the value as a double. A guid gives toInt. A String gives its leading decimal
    /// number, or 0.0 if there is none.
    virtual double toDouble() const = 0;
    virtual float toFloat() const = 0;            ///< toDouble, rounded
    virtual long double toLongDouble() const = 0; ///< toDouble
    /// Returns the value as text: a decimal integer, a number with six decimals, "true" or "false",
    /// the GUID layout, or a string's own characters. Returns null for a kind without a text form,
    /// and if there is no memory for the text. The value owns the text. It is valid until the next
    /// toString or freeString, or until a string changes.
    virtual const char* toString() const = 0;
    /// Copies the value as a GUID into out and returns out. A guid gives its value, and other kinds
    /// give toInt in the lowest word.
    virtual JHashCode& toGuid(JHashCode& out) const = 0;
    /// Frees the text that toString made, if there is any.
    virtual void freeString() = 0;

protected:
    ~KELInterface_Casting_V1() = default;
};

/// Copying, assigning and comparing values of any kind.
class KELInterface_V1 {
public:
    /// Returns a deep copy of the same kind, with an identity of its own, count 1 and no observers;
    /// the caller owns it. A value that the source holds in two places becomes two values, which
    /// can change independently. If a value in the source contains itself, the copy has the same
    /// shape as the source instead: one copy of each value, shared in the same places. A struct's
    /// null variable becomes an Int 0; a checked struct's remains null. The copy of a manager holds
    /// the same elements, the copy of a selector selects from the same list.
    /// \throws JOutOfMemoryException "Out of memory!", by value; also if shared values would become
    ///         more than 2147483647 values
    virtual KEL* copy() const = 0;

    /// Takes over the contents of a value of the same kind, then notifies this value's observers.
    /// Afterwards both are equal in value. Containers take deep copies as copy() makes them, except
    /// that null variables remain null; managers take the same elements; a memory block takes a
    /// block of its own size. Null is ignored.
    /// \throws KELNoSuchTypeException "Can't set the value when types are not equal!"
    /// \throws KELMemBlockException "Cannot write past the end of the memory block." for a block
    ///         of another size
    /// \throws JOutOfMemoryException as copy(); this value is then unchanged
    virtual void assign(const KEL* value) = 0;

    KEL_SLOTS(
        /// Returns true if other has the same identity. Equal contents do not matter. Returns false
        /// for null.
        virtual bool equals(const KEL* other) const = 0;,
        /// Returns true if both are null, and false if only one is. Otherwise compares their
        /// identities.
        virtual bool equals(const KEL* a, const KEL* b) const = 0;)

    /// Takes over a value of any kind, converted into this value's kind as the containers' typed
    /// getters convert. This value remains the same object of the same kind. A value without a form
    /// in this kind leaves it unchanged, as null does. A container takes over a container of the
    /// same kind as assign() does.
    /// \param notify true to notify this value's observers of the change
    /// \throws JOutOfMemoryException as copy(); this value is then unchanged
    virtual void assignConverted(const KEL* value, bool notify) = 0;

    /// Returns true if other has the same kind and equal contents, element by element in
    /// containers. Int and Double compare as numbers; other values of different kinds are unequal.
    /// Identities and sharing never matter, and values that contain themselves are equal if no
    /// difference can be found. Returns false for null. The time grows with the number of distinct
    /// values in both, however they are shared. Can run out of memory.
    virtual bool equalsValue(const KEL* other) const = 0;

    /// Returns the version of this kind's stored form: 1.
    virtual int32_t getVersion() const = 0;

protected:
    ~KELInterface_V1() = default;
};

/// The reference-counting interface of a value.
class KEL_RefCount : public virtual KELInterface_RefCount_V1 {
protected:
    ~KEL_RefCount() = default;
};

/// The conversion interface of a value.
class KEL_Casting : public virtual KELInterface_Casting_V1 {
protected:
    ~KEL_Casting() = default;
};

/// A value of any kind. Hosts hold values as KEL or as the public class of the kind; dynamic_cast
/// converts from one to the other. A Create function returns a value with count 1, and DeleteKEL
/// releases it. One thread at a time uses a value.
class KEL : public virtual KEL_Casting,
            public virtual KEL_RefCount,
            public virtual KELInterface_V1 {
protected:
    ~KEL() = default;
};

/// Releases the value once, which deletes it only if nobody else holds it. Null is ignored. Gives
/// up the caller's reference. Never fails.
KEL_API void KEL_CALL DeleteKEL(KEL* value);
