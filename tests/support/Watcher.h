/// \file
/// Observers that record their notifications and can act on them.
#pragma once

#include "runtime/JObservable.h"

#include <functional>
#include <kel/KEL_Observable.h>
#include <vector>

namespace kel::test {

/// A host's observer. `then` runs inside the callback, after the call was noted.
class Watcher : public KEL_Observer {
public:
    Watcher() = default;
    explicit Watcher(std::function<void()> action) : then(std::move(action)) {}
    virtual ~Watcher() = default;

    void update(KEL* value) override {
        told.push_back(value);
        if (then) {
            const std::function<void()> action = then; // the action can replace `then`
            action();
        }
    }

    int calls() const { return static_cast<int>(told.size()); }

    std::vector<KEL*> told;
    std::function<void()> then;
};

/// The same as an observer of the runtime, with a count of the references to it.
class RuntimeWatcher : public JObserver {
public:
    RuntimeWatcher() = default;
    explicit RuntimeWatcher(std::function<void()> action) : then(std::move(action)) {}

    void update(JObservable* observable) override {
        told.push_back(observable);
        if (then) {
            const std::function<void()> action = then;
            action();
        }
    }

    int calls() const { return static_cast<int>(told.size()); }

    std::vector<JObservable*> told;
    std::function<void()> then;
};

/// Checks whether a value is still alive. The value holds a reference to the probe's observer and
/// releases it when it is destroyed.
class LifeProbe {
public:
    explicit LifeProbe(JObservable& observable) : observer_(new RuntimeWatcher()) {
        observable.JObservable::addObserver(observer_.get());
    }
    bool isAlive() const { return observer_->getRefCount() > 1; }

private:
    JPointer<RuntimeWatcher> observer_;
};

} // namespace kel::test
