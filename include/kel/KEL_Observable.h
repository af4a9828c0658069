/// \file
/// Watching values.
#pragma once

#include <kel/KEL.h>

class JObserver;

/// Implemented by a host that wants to be told when a value changes. The library never owns or
/// deletes it: remove it from every value before it goes. It may add and remove observers and
/// change or release the value from inside update.
class KEL_Observer {
public:
    /// Called after value has changed, once for each change; value is borrowed.
    virtual void update(KEL* value) = 0;

protected:
    ~KEL_Observer() = default;
};

/// Registration of observers. Containers are KEL_Observables by declaration, every other value by
/// dynamic_cast<KEL_Observable*>(value). Observers are called in the order of their registration.
/// A container does not watch its elements.
class KELInterface_Observable_V1 {
public:
    KEL_SLOTS(
        /// Registers an observer of the runtime; one that is registered already, or null, changes
        /// nothing. The value holds a reference to it.
        virtual void addObserver(JObserver* observer) = 0;,
        /// Registers a host's observer; one that is registered already, or null, changes nothing.
        virtual void addObserver(KEL_Observer* observer) = 0;)
    KEL_SLOTS(
        /// Takes a host's observer off; one that is not registered, or null, changes nothing.
        virtual void removeObserver(KEL_Observer* observer) = 0;,
        /// Takes an observer of the runtime off, in the same way.
        virtual void removeObserver(JObserver* observer) = 0;)

protected:
    ~KELInterface_Observable_V1() = default;
};

/// A value that can be watched.
class KEL_Observable : public virtual KELInterface_Observable_V1 {
protected:
    ~KEL_Observable() = default;
};
