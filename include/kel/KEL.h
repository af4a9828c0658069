/// \file
/// KEL: what every value can do, whatever its kind.
#pragma once

#include <kel/JHashCode.h>
#include <kel/KELKind.h>

class KEL;

/// Reference count, identity and kind of a value.
class KELInterface_RefCount_V1 {
public:
    /// Adds one reference.
    virtual void addRef() = 0;
    /// Takes one reference back; at zero the value deletes itself. \return the new count
    virtual int32_t release() = 0;
    /// Copies the value's identity into out and returns out.
    virtual JHashCode& getHashCode(JHashCode& out) const = 0;
    /// The kind code, one of KELKind.
    virtual int32_t getType() const = 0;
    /// Answers 1, whatever the real count is; only release reports the real count.
    virtual int32_t getRefCount() const = 0;

protected:
    ~KELInterface_RefCount_V1() = default;
};

/// Conversions of one value by its own rules. They never throw; a kind that has no form of the
/// asked type answers false, 0, 0.0, null or all zero.
class KELInterface_Casting_V1 {
public:
    /// Boolean: its value. Int, Double: true only for exactly 1. guid: toInt is not 0. String: has
    /// any characters.
    virtual bool toBoolean() const = 0;
    /// Double: truncated toward zero through 64 bits, low 32 bits, 0 for what does not fit. guid:
    /// JHashCode::intValue. String: leading decimal integer, saturated, 0 for none.
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
    /// guid: toInt as a double. String: leading decimal number, 0.0 for none.
    virtual double toDouble() const = 0;
    virtual float toFloat() const = 0;            ///< toDouble, rounded
    virtual long double toLongDouble() const = 0; ///< toDouble
    /// The value as text: decimal integer, six decimals, "true" or "false", GUID layout, or a
    /// string's own characters; null for kinds without a text form, and when there is no memory for
    /// it. Owned by the value; valid until the next toString or freeString, or until a string
    /// changes.
    virtual const char* toString() const = 0;
    /// guid: its value. Others: toInt in the lowest word. Returns out.
    virtual JHashCode& toGuid(JHashCode& out) const = 0;
    /// Frees the text that toString made, if there is one.
    virtual void freeString() = 0;

protected:
    ~KELInterface_Casting_V1() = default;
};

/// Copying, assigning and comparing values of any kind.
class KELInterface_V1 {
public:
    /// A deep copy of the same kind, with an identity of its own, count 1 and no observers; the
    /// caller owns it. A value that is shared inside the source is shared alike inside the copy,
    /// so cycles keep their shape. A struct's null variable becomes an Int 0; a manager's copy
    /// holds the same elements.
    virtual KEL* copy() const = 0;

    /// Takes over the contents of a value of the same kind, then notifies this value's observers.
    /// Containers take deep copies, managers the same elements; a memory block takes a block of
    /// its own size. Null is ignored.
    /// \throws KELNoSuchTypeException "Can't set the value when types are not equal!"
    /// \throws KELMemBlockException "Cannot write past the end of the memory block." for a block
    ///         of another size
    virtual void assign(const KEL* value) = 0;

    KEL_SLOTS(
        /// True when other is the same value by identity; equal contents do not matter. False for
        /// null.
        virtual bool equals(const KEL* other) const = 0;,
        /// True when both are null, false when one is, else the comparison of their identities.
        virtual bool equals(const KEL* a, const KEL* b) const = 0;)

    /// Takes over a value of any kind, converted into this value's kind as the containers' typed
    /// getters convert. This value stays the same object of the same kind. A value without a form
    /// in this kind leaves it unchanged, as null does.
    /// \param notify whether this value's observers are told of the change
    virtual void assignConverted(const KEL* value, bool notify) = 0;

    /// True when other has the same kind and equal contents, element by element in containers. Int
    /// and Double compare as numbers; all else of different kind is unequal. Identities never
    /// matter. False for null.
    virtual bool equalsValue(const KEL* other) const = 0;

    /// The version of this kind's stored form: 1.
    virtual int32_t getVersion() const = 0;

protected:
    ~KELInterface_V1() = default;
};

/// The reference-counting face of a value.
class KEL_RefCount : public virtual KELInterface_RefCount_V1 {
protected:
    ~KEL_RefCount() = default;
};

/// The conversion face of a value.
class KEL_Casting : public virtual KELInterface_Casting_V1 {
protected:
    ~KEL_Casting() = default;
};

/// A value of any kind. Hosts hold values as KEL or as the public class of the kind (dynamic_cast
/// leads from the one to the other), get them with count 1 from the Create functions and give them
/// back with DeleteKEL. A value is used by one thread at a time.
class KEL : public virtual KEL_Casting,
            public virtual KEL_RefCount,
            public virtual KELInterface_V1 {
protected:
    ~KEL() = default;
};

/// Releases the value once, which deletes it only if nobody else holds it. Null is ignored.
KEL_API void KEL_CALL DeleteKEL(KEL* value);
