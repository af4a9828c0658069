/// \file
/// JObservable: an object that can be watched.
#pragma once

#include "runtime/JObserver.h"
#include "runtime/JVector.h"

/// Keeps a list of observers and a changed flag, and notifies every observer in the order of their
/// registration once it has been marked changed.
class JObservable : public virtual JObject {
public:
    /// A fresh identity, not changed, no observers.
    JObservable() = default;

    /// The given identity, not changed, no observers.
    JObservable(uint32_t w0, uint32_t w1, uint32_t w2, uint32_t w3) : JObject(w0, w1, w2, w3) {}

    /// Appends observer unless it is registered already; null registers nothing.
    virtual void addObserver(JObserver* observer);

    /// Takes observer off if it is registered.
    virtual void deleteObserver(JObserver* observer);

    /// True when observer is registered; false for null.
    virtual bool containsObserver(const JObserver* observer) const;

    /// Calls every observer if the changed flag is set, then clears the flag. Without a list
    /// nothing happens and the flag stays. The list is read anew at every step, so an observer
    /// added meanwhile is called and one removed before its turn is not; removing one at or before
    /// the current place passes over the next in this round. The object outlives the walk.
    /// An observer that throws does not keep the others from being called; at the end the first
    /// exception reaches the caller.
    virtual void notifyObservers();

    /// Takes every observer off.
    virtual void deleteObservers();

    /// Sets the changed flag.
    virtual void setChanged() { changed_ = true; }

    /// Clears the changed flag.
    virtual void clearChanged() { changed_ = false; }

    /// The changed flag.
    virtual bool hasChanged() const { return changed_; }

    /// The number of observers.
    virtual int32_t countObservers() const;

protected:
    /// The observers in order, null when none was ever added since deleteObservers.
    const JVector<JObserver>* observers() const { return observers_.get(); }

private:
    bool changed_ = false;
    JPointer<JVector<JObserver>> observers_;
};
