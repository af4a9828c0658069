/// \file
/// KEL_Manager: a collection of values that are looked up by their identity, and a factory of
/// values by kind.
#pragma once

#include <kel/KEL_Observable.h>

/// Operations of a manager. It shares its elements and keeps them in the order in which they were
/// added. No two elements have the same identity. A lookup takes constant time, except for the
/// first ones in a long manager, which are linear.
///
/// \par Ownership
/// The manager shares its elements: it adds a reference of its own to each.
class KELInterface_Manager_V1 {
public:
    /// Returns true if an element has this identity.
    virtual bool containsKel(JHashCode hashCode) const = 0;
    /// Appends value, or replaces the element with the same identity, and notifies. Null is
    /// ignored.
    virtual void addKel(KEL* value) = 0;
    /// Returns the same element as getKel, borrowed, through its value base. The library uses this
    /// form; hosts need only getKel.
    /// \throws KELNoSuchElementException "getKel: no such element"
    virtual KEL* getKelBase(JHashCode hashCode) const = 0;
    /// Returns the element with this identity, borrowed: the manager keeps its reference.
    /// \throws KELNoSuchElementException "getKel: no such element"
    virtual KEL* getKel(JHashCode hashCode) const = 0;
    /// Removes the element with this identity and notifies.
    /// \throws KELNoSuchElementException "removeKel: KEL not found."
    virtual void removeKel(JHashCode hashCode) = 0;
    /// Removes every element. This is the only change that notifies nobody.
    virtual void removeAllKels() = 0;
    /// Returns the number of elements.
    virtual int32_t size() const = 0;
    KEL_SLOTS(
        /// Returns a new empty value of the kind (one of KELKind) with a fresh identity and count
        /// 1, owned by the caller. The value is not added to the manager.
        /// \throws KELNoSuchTypeException "createKel: Unknown type."
        /// \throws JOutOfMemoryException "Out of memory!", by value, whatever the kind
        virtual KEL* createKel(int32_t kind) = 0;,
        /// Does the same with the given identity; the caller owns the value too. Throws the same.
        virtual KEL* createKel(int32_t kind, JHashCode hashCode) = 0;)

protected:
    ~KELInterface_Manager_V1() = default;
};

/// A flat collection of values, found by identity. Kind 9.
class KEL_Manager : public virtual KEL,
                    public virtual KEL_Observable,
                    public virtual KELInterface_Manager_V1 {
public:
    /// Returns the element at index in the order of addition, borrowed. The index runs from 0 to
    /// size() - 1. Use it with size() to list a manager whose identities you do not know.
    /// \throws KELNoSuchElementException "getKel: no such element" for any other index
    virtual KEL* getKelAt(int32_t index) const = 0;

protected:
    ~KEL_Manager() = default;
};

/// Returns a new empty manager with count 1, owned by the caller. Returns null when out of memory.
KEL_API KEL_Manager* KEL_CALL CreateKELManager();
