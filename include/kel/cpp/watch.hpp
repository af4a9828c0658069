/// \file
/// watch: calls a function after each change of a value.
#pragma once

#include <kel/cpp/observer.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Something that calls a function until it ends.
class watching {
public:
    /// Ends the calls and disposes of the object. The function is destroyed at once, or after its
    /// running call.
    virtual void end() noexcept = 0;

protected:
    ~watching() = default;
};

} // namespace detail

/// Calls a function after each change, as long as it lives. watch, watch_path, watch_tree and
/// watch_values make one. It keeps the value alive.
///
/// The function is called only inside calls that change the value. Releasing handles changes
/// nothing. So a subscription whose function captures this can be any member, unless the destructor
/// of a member that is declared after it changes the value. Make such a member a
/// pinned_subscription, so that the object cannot be moved.
///
/// It can end, be destroyed and be moved inside its own call, and end others there. One that has
/// ended is not called any more, even if it has not been called yet for the present change. Nobody
/// else misses a call.
class [[nodiscard]] subscription {
public:
    /// Makes one that watches nothing.
    subscription() noexcept = default;
    /// For watch and its relatives.
    explicit subscription(detail::watching* owned) noexcept : watching_(owned) {}
    subscription(subscription&& other) noexcept
        : watching_(std::exchange(other.watching_, nullptr)) {}
    subscription& operator=(subscription&& other) noexcept {
        subscription taken(std::move(other));
        std::swap(watching_, taken.watching_);
        return *this;
    }
    ~subscription() { end(); }

    /// Ends the calls. Afterwards it watches nothing.
    void end() noexcept {
        if (detail::watching* ending = std::exchange(watching_, nullptr)) {
            ending->end();
        }
    }
    /// Returns whether it still watches.
    explicit operator bool() const noexcept { return watching_ != nullptr; }

private:
    detail::watching* watching_ = nullptr;
};

/// A subscription as a member of a class. It can be neither copied nor moved, and so the class
/// cannot: a function that captures this would still use the old object.
///
///     class meter {
///     public:
///         explicit meter(const kel::value& panel)
///             : watching_(kel::watch_path(panel, "gain", [this](kel::value v) { draw(v); })) {}
///     private:
///         kel::pinned_subscription watching_;
///     };
///
/// One that watches nothing at first can be a member too: watching_ = kel::watch(...).
class pinned_subscription {
public:
    /// Makes one that watches nothing.
    pinned_subscription() noexcept = default;
    /// Takes over what watch, watch_path, watch_tree or watch_values returns.
    pinned_subscription(subscription&& made) noexcept : watching_(std::move(made)) {}
    pinned_subscription(const pinned_subscription&) = delete;
    pinned_subscription& operator=(const pinned_subscription&) = delete;
    ~pinned_subscription() = default;

    /// Ends the calls of the one before, and takes over another.
    pinned_subscription& operator=(subscription&& made) noexcept {
        watching_ = std::move(made);
        return *this;
    }

    /// Ends the calls. Afterwards it watches nothing.
    void end() noexcept { watching_.end(); }
    /// Returns whether it still watches.
    explicit operator bool() const noexcept { return static_cast<bool>(watching_); }

private:
    subscription watching_;
};

namespace detail {

/// Watches one value.
template <class Call> class value_watcher final : public observer, public watching {
public:
    template <class From>
    value_watcher(ref<KEL> observed, From&& call)
        : observer(std::move(observed)), call_(std::forward<From>(call)) {}

    void end() noexcept override {
        end_calls();
        if (running_ == 0) {
            call_.reset();
        }
        retire();
    }

private:
    ~value_watcher() override = default;

    void on_change() override {
        struct run {
            explicit run(value_watcher& of) : watcher(of) { ++watcher.running_; }
            run(const run&) = delete;
            run& operator=(const run&) = delete;
            ~run() {
                if (--watcher.running_ == 0 && watcher.has_ended()) {
                    watcher.call_.reset();
                }
            }
            value_watcher& watcher;
        } const running(*this);
        (*call_)(value(share(observed())));
    }

    std::optional<Call> call_; ///< empty after the end
    int running_ = 0;          ///< calls, one inside the other
};

/// Returns the value, which somebody wants to watch.
/// \throws type_error for null and for a value that the library did not make
inline ref<KEL> watchable(const value& watched) {
    if (!watched) {
        throw type_error("Cannot watch null.");
    }
    if (dynamic_cast<KEL_Observable*>(watched.raw()) == nullptr) {
        throw type_error("Cannot watch a value that the library did not make.");
    }
    return share(watched.raw());
}
inline ref<KEL> watchable(const_place&& watched) {
    return watchable(std::move(watched).to_watch());
}
inline ref<KEL> watchable(place&& watched) {
    return watchable(std::move(watched).to_watch());
}

} // namespace detail

/// Calls a function with the value after each change of the value itself, also if it remains equal.
/// If another object takes its place (by =, reset, or assign of the struct around it), the function
/// is not called any more: watch_path follows the place. The changes that count are those that
/// notify the library's observers: a container does not report changes inside its elements
/// (watch_tree does). The function runs inside the call that made the change, on its thread. If it
/// throws, the exception reaches whoever made the change, after all others have been called.
///
///     kel::subscription volume = kel::watch(cfg["volume"], [](kel::value v) { show(v); });
///
/// The function can do anything with the value. A change inside it is reported at once, so change
/// the value only under a condition that ends. A subscription that is made inside the call of
/// another one for the same value is first called for the next change.
///
/// An observer of another make (KEL_Observer) that ends a subscription of the same value inside its
/// update removes an observer during a round. That can make the round skip the next one.
///
/// A variable of a checked struct that has only its default gets a value of its own first.
/// \param watched a value, or a place with one
/// \throws type_error for null
/// \throws not_found also for the default of a constant checked struct
template <class Watched, class Call>
[[nodiscard]] subscription watch(Watched&& watched, Call&& call) {
    static_assert(std::is_invocable_v<std::decay_t<Call>&, value>,
                  "kel: watch calls the function with a kel::value.");
    auto* watcher = new detail::value_watcher<std::decay_t<Call>>(
        detail::watchable(std::forward<Watched>(watched)), std::forward<Call>(call));
    subscription made(watcher);
    detail::call([watcher] { watcher->start(); });
    return made;
}

} // namespace v1
} // namespace kel
