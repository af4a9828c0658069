/// \file
/// KEL_Observer and KEL_Observable: observers of values.
#pragma once

#include <kel/KEL.h>

class JObserver;

/// A host implements it to be notified when a value changes. The library never owns or deletes an
/// observer. Remove the observer from every value before you destroy it. Inside update, it can add
/// and remove observers, and change or release the value.
class KEL_Observer {
public:
    /// Called after value has changed, once for each change. The value is borrowed. What it throws
    /// reaches the caller of the change, after the change is complete and all observers are called.
    virtual void update(KEL* value) = 0;

protected:
    ~KEL_Observer() = default;
};

/// Registers observers. Containers are KEL_Observables by declaration; use
/// dynamic_cast<KEL_Observable*>(value) for every other value. Observers are called in the order of
/// their registration. A container does not observe its elements.
///
/// \par Ownership
/// The value never owns a host's observer. It gives up its reference to one of the runtime.
class KELInterface_Observable_V1 {
public:
    KEL_SLOTS(
        /// Registers an observer of the runtime. The value holds a reference to it. Null, or an
        /// observer that is registered already, changes nothing.
        virtual void addObserver(JObserver* observer) = 0;,
        /// Registers a host's observer, which remains the host's: the value adds no reference.
        /// Null, or an observer that is registered already, changes nothing.
        virtual void addObserver(KEL_Observer* observer) = 0;)
    KEL_SLOTS(
        /// Removes a host's observer. Null, or an observer that is not registered, changes nothing.
        virtual void removeObserver(KEL_Observer* observer) = 0;,
        /// Removes an observer of the runtime. Null, or an observer that is not registered, changes
        /// nothing.
        virtual void removeObserver(JObserver* observer) = 0;)

protected:
    ~KELInterface_Observable_V1() = default;
};

/// A value that can be observed.
class KEL_Observable : public virtual KELInterface_Observable_V1 {
protected:
    ~KEL_Observable() = default;
};
