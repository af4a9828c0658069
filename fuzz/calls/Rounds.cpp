#include "calls/Rounds.h"

#include "Property.h"

#include <algorithm>
#include <cstring>

namespace kel::fuzz {

namespace {

constexpr int mostActions = 100;
constexpr std::size_t deepest = 3;

/// Makes the library throw an exception as a pointer.
void throwBadIndex() {
    struct Release {
        KEL* value;
        ~Release() { DeleteKEL(value); }
    };
    KEL_Array* array = CreateKELArray();
    const Release later{array};
    array->getVar(-1);
}

} // namespace

void Watcher::update(KEL* value) {
    rounds_.notified(this, value); // which can delete this observer
}

Rounds::Rounds(Script& script, Model& model) : script_(script), model_(model) {
    for (auto& watcher : watchers_) {
        watcher = std::make_unique<Watcher>(*this);
    }
}

std::optional<Rounds::Thrown> Rounds::caught(const std::function<void()>& call) {
    try {
        call();
    } catch (int) {
        return Thrown::number;
    } catch (KELException* failure) {
        DeleteKELException(failure);
        return Thrown::exception;
    }
    return std::nullopt;
}

void Rounds::raise(Thrown thrown) {
    if (thrown == Thrown::exception) {
        throwBadIndex();
    }
    throw 42;
}

void Rounds::expect(const std::vector<Node*>& changed, bool canNest,
                    const std::function<void()>& call) {
    Frame& opened = frames_.emplace_back(Frame{{}, 0, canNest});
    for (Node* node : changed) {
        opened.rounds.push_back({node});
    }
    model_.settle(pinned()); // the call frees what it drops before it notifies
    const std::optional<Thrown> thrown = caught(call);
    const Frame frame = frames_.back();
    frames_.pop_back();
    for (std::size_t i = frame.current; i < frame.rounds.size(); ++i) {
        require(frame.rounds[i].isOver(), "every observer is notified");
    }
    require(thrown == frame.first, "the first exception of an observer reaches the caller");
    if (thrown && !frames_.empty()) {
        raise(*thrown); // through the update that made this call
    }
}

void Rounds::expectRefusal(const char* message, const std::function<void()>& call) {
    frames_.emplace_back(Frame{{}, 0, false});
    bool isRefused = false;
    try {
        call();
    } catch (KELException* failure) {
        isRefused = std::strcmp(failure->getMessage(), message) == 0;
        DeleteKELException(failure);
    }
    require(isRefused, "a call is refused", message);
    frames_.pop_back();
}

void Rounds::notified(Watcher* watcher, KEL* value) {
    require(!frames_.empty(), "nobody is notified outside a call");
    Frame& frame = frames_.back();
    while (frame.current < frame.rounds.size() && frame.rounds[frame.current].isOver()) {
        ++frame.current;
    }
    require(frame.current < frame.rounds.size(), "nobody else is notified");
    Round& round = frame.rounds[frame.current];
    require(round.node->real == value, "the value that changed is passed to the observer");
    require(round.node->watchers[round.next] == watcher, "observers are called in order");
    ++round.next;
    const std::size_t depth = frames_.size();
    const auto thrown =
        caught([&] { act(watcher, *round.node, frame.canNest && depth < deepest); });
    require(frames_.size() == depth, "every nested call has returned");
    Frame& same = frames_.back(); // nested calls can have moved it
    if (thrown) {
        same.first = same.first.value_or(*thrown);
        raise(*thrown);
    }
}

void Rounds::act(Watcher* watcher, Node& node, bool canNest) {
    if (script_.isAtEnd() || ++actions_ > mostActions) {
        return;
    }
    switch (script_.below(12)) {
    case 0:
    case 1:
        changeWatchers(node);
        break;
    case 2:
        remove(node, watcher);
        break;
    case 3:
        raise(Thrown::number);
    case 4:
        raise(Thrown::exception);
    case 5:
        replaceWatcher(watcher);
        break;
    case 6:
    case 7:
        if (canNest) {
            changeAgain(node);
        }
        break;
    case 8:
        releaseSomething();
        break;
    default:
        break;
    }
}

void Rounds::changeAgain(Node& node) {
    if (node.kind == KELKind_Array && node.elements.size() > 3) {
        node.elements.clear();
        expect({&node}, true, [&node] { node.as<KEL_Array>().removeAllVars(); });
    } else if (node.kind == KELKind_Array) {
        node.elements.push_back(model_.addMade(KELKind_Int, 5));
        expect({&node}, true, [&node] { node.as<KEL_Array>().addInt(int32_t{5}); });
    } else if (node.kind == KELKind_Struct && !node.variables.empty()) {
        const std::string name = node.variables.begin()->first;
        node.variables.erase(name);
        expect({&node}, true, [&] { node.as<KEL_Struct>().removeVar(name.c_str()); });
    } else if (node.kind == KELKind_Int) {
        const int32_t number = -static_cast<int32_t>(node.number) / 2;
        node.number = number;
        expect({&node}, true, [&node, number] { node.as<KEL_Int>().setValue(number); });
    }
}

void Rounds::releaseSomething() {
    Node*& place = model_.places[static_cast<std::size_t>(script_.below(16))];
    if (place != nullptr) {
        KEL* real = place->real;
        place = nullptr;
        model_.settle(pinned());
        real->release();
    }
}

void Rounds::replaceWatcher(Watcher* watcher) {
    for (Node& node : model_.nodes()) {
        if (node.real != nullptr) {
            remove(node, watcher);
        }
    }
    for (auto& owner : watchers_) {
        if (owner.get() == watcher) {
            owner = std::make_unique<Watcher>(*this);
            return;
        }
    }
}

std::vector<Node*> Rounds::pinned() const {
    std::vector<Node*> nodes;
    for (const Frame& frame : frames_) {
        for (const Round& round : frame.rounds) {
            nodes.push_back(round.node);
        }
    }
    return nodes;
}

void Rounds::changeWatchers(Node& node) {
    const int choice = script_.byte();
    Watcher* watcher = watchers_[static_cast<std::size_t>(choice % 4)].get();
    choice < 128 ? add(node, watcher) : remove(node, watcher);
}

void Rounds::watch(Node& node) {
    add(node, watchers_.front().get());
}

void Rounds::removeWatchers(Node& node) {
    for (const auto& watcher : watchers_) {
        remove(node, watcher.get());
    }
}

void Rounds::add(Node& node, Watcher* watcher) {
    if (std::find(node.watchers.begin(), node.watchers.end(), watcher) == node.watchers.end()) {
        node.watchers.push_back(watcher);
    }
    node.as<KEL_Observable>().addObserver(watcher);
}

void Rounds::remove(Node& node, Watcher* watcher) {
    std::erase(node.watchers, watcher);
    node.as<KEL_Observable>().removeObserver(watcher);
}

} // namespace kel::fuzz
