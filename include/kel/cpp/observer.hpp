/// \file
/// observer: the library's observers as this header uses them. They can end at any time, inside the
/// calls of observers too, and no other observer misses a call.
#pragma once

#include <kel/cpp/range.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// A call of an observer of this header. The calls of a thread form a stack: as long as one of a
/// value is on it, the value's observers are being called.
class observer_call {
public:
    explicit observer_call(const KEL* of) noexcept : of_(of), outer_(innermost()) {
        innermost() = this;
    }
    observer_call(const observer_call&) = delete;
    observer_call& operator=(const observer_call&) = delete;
    ~observer_call() { innermost() = outer_; }

    /// Returns how many rounds of calls for this value are under way on this thread.
    static int rounds(const KEL* of) noexcept {
        int count = 0;
        for (const observer_call* call = innermost(); call != nullptr; call = call->outer_) {
            count += call->of_ == of ? 1 : 0;
        }
        return count;
    }

private:
    static observer_call*& innermost() noexcept {
        static thread_local observer_call* call = nullptr;
        return call;
    }

    const KEL* of_;
    observer_call* outer_;
};

/// Returns the operations for observers of a value that the library made.
inline KEL_Observable& observable_of(KEL& object) {
    return *dynamic_cast<KEL_Observable*>(&object);
}

class observer;

/// Takes off the observers that ended during a round of calls for their value. If they were taken
/// off at once, the round would skip others.
///
/// Each thread has one. It registers itself as the last observer of such a value, so it is called
/// when the round has reached its end. It is never destroyed, because objects that outlive the
/// thread's own can still use it.
class sweeper final : public KEL_Observer {
public:
    static sweeper& of_this_thread() noexcept {
        static thread_local sweeper its_own;
        return its_own;
    }

    /// Takes over an observer that has ended, and its reference to the value.
    void bury(observer& ended) noexcept;
    /// Becomes the last observer of the value again, if it is one of them. Another one was just
    /// added.
    void stay_last(KEL& of) noexcept;
    void update(KEL* changed) override;
    /// Takes off all observers that still wait.
    void sweep_all() noexcept;

private:
    struct at_thread_end {
        ~at_thread_end() { of_this_thread().sweep_all(); }
    };

    bool has_graves(const KEL* of) const noexcept;
    void become_last(KEL_Observable& of) noexcept;
    void sweep(KEL& of) noexcept;

    observer* first_ = nullptr; ///< of those that wait
};

/// Observes one value and keeps it alive. It is made with new, and retire deletes it.
class observer : public KEL_Observer {
public:
    explicit observer(ref<KEL> observed) noexcept : observed_(std::move(observed)) {}
    observer(const observer&) = delete;
    observer& operator=(const observer&) = delete;

    /// Registers it. It is not called in rounds that are under way.
    /// \throws JOutOfMemoryException
    void start() {
        rounds_before_ = observer_call::rounds(observed_.get());
        observable_of(*observed_).addObserver(this);
        sweeper::of_this_thread().stay_last(*observed_);
    }

    /// Ends the calls. Takes it off and deletes it, at once or at the end of the round.
    void retire() noexcept {
        has_ended_ = true;
        if (observer_call::rounds(observed_.get()) > 0) {
            sweeper::of_this_thread().bury(*this);
        } else {
            observable_of(*observed_).removeObserver(this);
            delete this;
        }
    }

    void update(KEL*) final {
        const int outer_rounds = observer_call::rounds(observed_.get());
        if (outer_rounds < rounds_before_) { // this round began before start
            rounds_before_ = outer_rounds;
        } else if (!has_ended_) {
            const observer_call call(observed_.get());
            on_change();
        }
    }

    KEL* observed() const noexcept { return observed_.get(); }
    bool has_ended() const noexcept { return has_ended_; }

protected:
    virtual ~observer() = default;
    /// Called after the value has changed. The observer remains until it returns, even if it ends.
    virtual void on_change() = 0;
    /// Ends the calls before retire.
    void end_calls() noexcept { has_ended_ = true; }

private:
    friend class sweeper;

    ref<KEL> observed_;
    observer* next_ = nullptr; ///< in the list of the sweeper
    int rounds_before_ = 0;    ///< those that began before start and have not called it yet
    bool has_ended_ = false;
};

inline bool sweeper::has_graves(const KEL* of) const noexcept {
    const observer* each = first_;
    while (each != nullptr && each->observed() != of) {
        each = each->next_;
    }
    return each != nullptr;
}

inline void sweeper::become_last(KEL_Observable& of) noexcept {
    of.removeObserver(this);
    try {
        of.addObserver(this);
    } catch (const JException&) { // out of memory: the observers wait for the end of the thread
    }
}

inline void sweeper::bury(observer& ended) noexcept {
    static thread_local at_thread_end cleaning;
    static_cast<void>(&cleaning);
    if (!has_graves(ended.observed())) {
        become_last(observable_of(*ended.observed()));
    }
    ended.next_ = std::exchange(first_, &ended);
}

inline void sweeper::stay_last(KEL& of) noexcept {
    if (has_graves(&of)) {
        become_last(observable_of(of));
    }
}

inline void sweeper::update(KEL* changed) {
    if (observer_call::rounds(changed) == 0) { // otherwise an outer round calls it again
        sweep(*changed);
    }
}

inline void sweeper::sweep(KEL& of) noexcept {
    const ref<KEL> held = share(&of);
    KEL_Observable& observable = observable_of(of);
    observable.removeObserver(this);
    for (observer** at = &first_; *at != nullptr;) {
        if ((*at)->observed() == &of) {
            observer* ended = std::exchange(*at, (*at)->next_);
            observable.removeObserver(ended);
            delete ended;
        } else {
            at = &(*at)->next_;
        }
    }
}

inline void sweeper::sweep_all() noexcept {
    while (first_ != nullptr) {
        sweep(*first_->observed());
    }
}

} // namespace detail
} // namespace v1
} // namespace kel
