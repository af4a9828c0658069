/// \file
/// JObserver: an object that is notified when an observable has changed.
#pragma once

#include <kel/JObject.h>

class JObservable;

/// Base of the objects that watch JObservables.
class JObserver : public virtual JObject {
public:
    /// Called by the observable after a change.
    virtual void update(JObservable* observable) = 0;
};
