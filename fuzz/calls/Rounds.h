/// \file
/// Rounds: the notifications that a call must make, checked one by one while it makes them.
#pragma once

#include "Script.h"
#include "calls/Model.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kel::fuzz {

class Rounds;

/// An observer of the script. It passes each notification on.
class Watcher : public KEL_Observer {
public:
    explicit Watcher(Rounds& rounds) : rounds_(rounds) {}
    virtual ~Watcher() = default;
    void update(KEL* value) override;

private:
    Rounds& rounds_;
};

/// Makes calls and checks that they notify exactly the expected observers, in order. Inside a
/// notification, the script lets the observer act: it adds and removes observers, changes the value
/// again, releases values, throws, and deletes itself.
class Rounds {
public:
    Rounds(Script& script, Model& model);

    /// Makes a call that the model has carried out already.
    /// \param changed the values whose observers it notifies, one round for each
    /// \param canNest whether an observer may change the value of the round again
    void expect(const std::vector<Node*>& changed, bool canNest, const std::function<void()>& call);

    /// Makes a call that must throw a KELException with this message and notify nobody.
    void expectRefusal(const char* message, const std::function<void()>& call);

    /// Adds or removes a watcher, as the script chooses.
    void changeWatchers(Node& node);

    /// Adds the first watcher.
    void watch(Node& node);

    /// Removes all watchers from the node.
    void removeWatchers(Node& node);

    /// A watcher was notified of a change.
    void notified(Watcher* watcher, KEL* value);

private:
    /// What an update threw.
    enum class Thrown { number, exception };

    struct Round {
        Node* node;
        std::size_t next = 0; ///< number of the watcher that is called next
        bool isOver() const { return next >= node->watchers.size(); }
    };

    /// A call that has not returned.
    struct Frame {
        std::vector<Round> rounds;
        std::size_t current = 0;
        bool canNest;
        std::optional<Thrown> first{}; ///< the first exception of an observer
    };

    static std::optional<Thrown> caught(const std::function<void()>& call);
    [[noreturn]] void raise(Thrown thrown);
    void act(Watcher* watcher, Node& node, bool canNest);
    void changeAgain(Node& node);
    void releaseSomething();
    void replaceWatcher(Watcher* watcher);
    std::vector<Node*> pinned() const;
    void add(Node& node, Watcher* watcher);
    void remove(Node& node, Watcher* watcher);

    Script& script_;
    Model& model_;
    std::array<std::unique_ptr<Watcher>, 4> watchers_;
    std::vector<Frame> frames_;
    int actions_ = 0; ///< how often observers have acted
};

} // namespace kel::fuzz
