/// \file
/// StringEnumeration: a list of names handed to hosts.
#pragma once

#include <kel/JHashCode.h>

class StringEnumeration;

/// A duplicate-free list of strings in the order of their addition, with a cursor. Comparison is
/// byte by byte and case-sensitive.
class StringEnumerationInterface_V1 {
public:
    /// True when the cursor has a string left.
    virtual bool hasMoreElements() const = 0;
    /// The string at the cursor, which moves on. Owned by the enumeration and valid while it lives
    /// and holds the string. Ask hasMoreElements first: past the last string the answer is null.
    /// \throws KELNoSuchElementException "Enumeration is empty." when nothing was ever added
    virtual const char* nextElement() = 0;
    /// The number of strings.
    virtual int32_t getCount() const = 0;
    /// Moves the cursor back to the first string.
    virtual void reset() = 0;
    /// True when text is in the list; false for null.
    virtual bool contains(const char* text) const = 0;
    /// Adds every string of other that is missing here and resets other's cursor. Null is ignored.
    virtual void addAll(StringEnumeration* other) = 0;
    /// Adds a copy of text unless it is there already. Null is ignored.
    virtual void add(const char* text) = 0;
    /// Adds one reference.
    virtual void addRef() = 0;
    /// Takes one reference back; at zero the enumeration deletes itself. \return the new count
    virtual int32_t release() = 0;
    /// Copies the enumeration's identity into out and returns out.
    virtual JHashCode& getHashCode(JHashCode& out) const = 0;
    /// Answers 1, as every counted interface of the library does.
    virtual int32_t getRefCount() const = 0;
    /// Removes text if it is there; the cursor is not moved. Null is ignored.
    virtual void remove(const char* text) = 0;

protected:
    ~StringEnumerationInterface_V1() = default;
};

/// The list that KEL_Struct::getVarNames and others return; give it back with
/// DeleteStringEnumeration.
class StringEnumeration : public virtual StringEnumerationInterface_V1 {
protected:
    ~StringEnumeration() = default;
};

/// Releases the enumeration once. Null is ignored.
KEL_API void KEL_CALL DeleteStringEnumeration(StringEnumeration* enumeration);
