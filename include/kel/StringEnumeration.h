/// \file
/// StringEnumeration: a list of names that the library returns to hosts.
#pragma once

#include <kel/JHashCode.h>

class StringEnumeration;

/// A duplicate-free list of strings, in the order in which they were added, with a cursor. It
/// compares strings byte by byte, case-sensitive.
///
/// \par Failures
/// Never fails.
class StringEnumerationInterface_V1 {
public:
    /// Returns true if the cursor has a string left.
    virtual bool hasMoreElements() const = 0;
    /// Returns the string at the cursor and moves the cursor on. The enumeration owns the string,
    /// which is valid while the enumeration lives and holds it. Returns null after the last string,
    /// so call hasMoreElements first.
    /// \throws KELNoSuchElementException "Enumeration is empty." if nothing was ever added
    virtual const char* nextElement() = 0;
    /// Returns the number of strings.
    virtual int32_t getCount() const = 0;
    /// Moves the cursor back to the first string.
    virtual void reset() = 0;
    /// Returns true if text is in the list. Returns false for null.
    virtual bool contains(const char* text) const = 0;
    /// Adds a copy of every string of other that is missing here and resets other's cursor. Null is
    /// ignored. The other enumeration remains the caller's.
    /// \throws JOutOfMemoryException by value when out of memory
    virtual void addAll(StringEnumeration* other) = 0;
    /// Adds a copy of text unless the list already holds that text. Null is ignored.
    /// \throws JOutOfMemoryException by value when out of memory
    virtual void add(const char* text) = 0;
    /// Adds one reference.
    virtual void addRef() = 0;
    /// Releases one reference. At zero the enumeration deletes itself.
    /// \return the new count
    virtual int32_t release() = 0;
    /// Copies the enumeration's identity into out and returns out.
    virtual JHashCode& getHashCode(JHashCode& out) const = 0;
    /// Returns 1, as every counted interface of the library does.
    virtual int32_t getRefCount() const = 0;
    /// Removes text if the list holds it. The cursor does not move. Null is ignored.
    virtual void remove(const char* text) = 0;

protected:
    ~StringEnumerationInterface_V1() = default;
};

/// The list that KEL_Struct::getVarNames and other operations return. Release it with
/// DeleteStringEnumeration.
class StringEnumeration : public virtual StringEnumerationInterface_V1 {
protected:
    ~StringEnumeration() = default;
};

/// Releases the enumeration once. Null is ignored. Gives up the caller's reference. Never fails.
KEL_API void KEL_CALL DeleteStringEnumeration(StringEnumeration* enumeration);
