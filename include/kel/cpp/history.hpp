/// \file
/// history: undo and redo of the changes of a document.
#pragma once

#include <kel/cpp/raised_flag.hpp>
#include <kel/cpp/restore.hpp>

namespace kel {
inline namespace v1 {

/// Remembers the states of a document, and goes back and forth between them.
///
///     kel::history changes(document);
///     document["volume"] = 7;
///     changes.remember();          // after each action of the user
///     changes.undo();
///
/// A state is a deep copy. Going to a state is value::restore: the document is changed in place, so
/// its handles and subscriptions remain valid. The document is shared with whoever else has a
/// handle of it. If the handle is made to refer to another document, make another history.
class history {
public:
    /// Remembers the present state.
    /// \param limit the number of steps that can be undone. The oldest ones are forgotten. With
    /// SIZE_MAX, none is.
    /// \throws type_error for null
    explicit history(value document, std::size_t limit = 100)
        : document_(std::move(document)), limit_(limit) {
        if (!document_) {
            detail::raise_wrong_kind("the document", "a value", nullptr);
        }
        states_.push_back(document_.copy());
    }

    /// Remembers the present state as a new step, after which nothing can be redone. Does nothing
    /// if the document equals the last state, and inside undo and redo, which make no new
    /// steps. So a function of watch_tree can call it.
    /// \return whether there is a new step
    bool remember() {
        if (is_restoring_) {
            return false;
        }
        value state = document_.copy();
        if (state == states_[present_]) {
            return false;
        }
        states_.reserve(present_ + 2);
        states_.resize(present_ + 1);
        states_.push_back(std::move(state));
        if (++present_ > limit_) {
            states_.erase(states_.begin());
            --present_;
        }
        return true;
    }
    /// Return whether there is a step to undo or redo.
    bool can_undo() const noexcept { return present_ > 0; }
    bool can_redo() const noexcept { return present_ + 1 < states_.size(); }
    /// Goes to the state before the last step, or after the next one. What was changed since the
    /// last remember is lost. If it throws, the step can be tried again.
    /// \return false at the oldest or newest state, and inside undo and redo
    bool undo() { return can_undo() && go_to(present_ - 1); }
    bool redo() { return can_redo() && go_to(present_ + 1); }

private:
    bool go_to(std::size_t state) {
        if (is_restoring_) {
            return false;
        }
        const detail::raised_flag now(is_restoring_);
        detail::restorer().restore(document_, states_[state]);
        present_ = state;
        return true;
    }

    value document_;
    std::size_t limit_;
    std::vector<value> states_; ///< at least one
    std::size_t present_ = 0;   ///< of the states
    bool is_restoring_ = false;
};

} // namespace v1
} // namespace kel
