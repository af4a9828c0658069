/// \file
/// JObserver: notified when an observable has changed.
#pragma once

#include <kel/JObject.h>

class JObservable;

/// One who watches JObservables.
class JObserver : public virtual JObject {
public:
    /// Called by the observable after a change.
    virtual void update(JObservable* observable) = 0;
};
