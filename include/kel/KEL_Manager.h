/// \file
/// KEL_Manager: values found by their identity, and the factory of values by kind.
#pragma once

#include <kel/KEL_Observable.h>

class KEL_Impl;

/// Operations of a manager. It shares its elements, keeps them in the order of their addition and
/// never holds two of the same identity. Lookup is a linear scan: managers are meant for tens to
/// hundreds of values.
class KELInterface_Manager_V1 {
public:
    /// True when an element has this identity.
    virtual bool containsKel(JHashCode hashCode) const = 0;
    /// Appends value, or puts it in the place of the element with the same identity, and notifies.
    /// Null is ignored.
    virtual void addKel(KEL* value) = 0;
    KEL_SLOTS(
        /// The library's own form of the element: the implementation base, borrowed.
        /// \throws KELNoSuchElementException "getKel: no such element"
        virtual KEL_Impl* getKel(JHashCode hashCode) const = 0;,
        /// The element with this identity, borrowed: the manager keeps its reference.
        /// \throws KELNoSuchElementException "getKel: no such element"
        virtual KEL* getKel(JHashCode hashCode) = 0;)
    /// Removes the element with this identity and notifies.
    /// \throws KELNoSuchElementException "removeKel: KEL not found."
    virtual void removeKel(JHashCode hashCode) = 0;
    /// Removes every element. The one change that notifies nobody.
    virtual void removeAllKels() = 0;
    /// The number of elements.
    virtual int32_t size() const = 0;
    KEL_SLOTS(
        /// A new empty value of the kind (one of KELKind) with a fresh identity, count 1, owned by
        /// the caller; it is not added to the manager.
        /// \throws KELNoSuchTypeException "createKel: Unknown type."
        virtual KEL* createKel(int32_t kind) = 0;,
        /// The same with the given identity.
        /// \throws KELNoSuchTypeException "createKel: Unknown type."
        virtual KEL* createKel(int32_t kind, JHashCode hashCode) = 0;)

protected:
    ~KELInterface_Manager_V1() = default;
};

/// A flat collection of values, found by identity. Kind 9.
class KEL_Manager : public virtual KEL,
                    public virtual KEL_Observable,
                    public virtual KELInterface_Manager_V1 {
public:
    /// The element at a place of the order of addition, from 0 to size() - 1: borrowed. With size()
    /// it lists a manager whose identities the host does not know.
    /// \throws KELNoSuchElementException "getKel: no such element" for another index
    virtual KEL* getKelAt(int32_t index) const = 0;

protected:
    ~KEL_Manager() = default;
};

/// A new empty manager, count 1, owned by the caller; null when out of memory.
KEL_API KEL_Manager* KEL_CALL CreateKELManager();
