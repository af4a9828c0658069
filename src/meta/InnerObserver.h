/// \file
/// InnerObserver: notifies the owner of an inner struct that it has changed.
#pragma once

#include "runtime/JObserver.h"
#include "runtime/Storage.h"

namespace kel {

/// Calls a function of its owner. The owner removes the observer before it is destroyed itself.
class InnerObserver final : public JObserver, public Stored {
public:
    InnerObserver(void (*changed)(void* owner), void* owner) : changed_(changed), owner_(owner) {}

    void update(JObservable*) override { changed_(owner_); }

private:
    void (*changed_)(void* owner);
    void* owner_;
};

} // namespace kel
