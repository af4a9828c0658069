/// \file
/// JObservable: an object that can be watched.
#pragma once

#include "platform/Inline.h"
#include "runtime/JObserver.h"
#include "runtime/ObjectList.h"

#include <memory>

/// Keeps a list of observers and a changed flag. If the flag is set, notifyObservers notifies every
/// observer in the order of registration.
class JObservable : public virtual JObject {
public:
    /// Makes an observable with a fresh identity, not changed and without observers.
    KEL_ALWAYS_INLINE JObservable() {}
    JObservable(const JObservable&) = delete;
    JObservable& operator=(const JObservable&) = delete;
    KEL_ALWAYS_INLINE ~JObservable() override {}

    /// Makes an observable with the given identity, not changed and without observers.
    JObservable(uint32_t w0, uint32_t w1, uint32_t w2, uint32_t w3) : JObject(w0, w1, w2, w3) {}

    /// Appends observer unless it is registered already; does nothing for null.
    virtual void addObserver(JObserver* observer);

    /// Removes observer if it is registered.
    virtual void deleteObserver(JObserver* observer);

    /// Returns whether observer is registered; false for null.
    virtual bool containsObserver(const JObserver* observer) const;

    /// Calls every observer if the changed flag is set, then clears the flag. Without a list it
    /// does nothing and keeps the flag. The list is read anew at every step: an observer added
    /// meanwhile is called, and one removed before its turn is not. Removing one at or before the
    /// current place skips the next one in this round. The object is kept alive until the end. When
    /// an observer throws, the others are still called; at the end the first exception reaches the
    /// caller.
    virtual void notifyObservers();

    /// Removes every observer.
    virtual void deleteObservers();

    /// Sets the changed flag.
    virtual void setChanged() { setMark(changedMark, true); }

    /// Clears the changed flag.
    virtual void clearChanged() { setMark(changedMark, false); }

    /// Returns the changed flag.
    virtual bool hasChanged() const { return hasMark(changedMark); }

    /// Returns the number of observers.
    virtual int32_t countObservers() const;

protected:
    /// The observers in order.
    using Observers = kel::ObjectList<JObserver>;

    /// Returns the observers; null when none was added since deleteObservers.
    const Observers* observers() const { return observers_.get(); }

    /// Returns whether an observer with this identity is registered.
    bool containsObserverWith(const JHashCode& identity) const;

    /// Removes the observer with this identity if it is registered.
    void deleteObserverWith(const JHashCode& identity);

private:
    struct DeleteObservers {
        void operator()(Observers* observers) const noexcept;
    };

    std::unique_ptr<Observers, DeleteObservers> observers_;
};
