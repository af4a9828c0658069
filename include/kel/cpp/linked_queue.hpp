/// \file
/// linked_queue: objects in the order in which they were added.
#pragma once

namespace kel {
inline namespace v1 {
namespace detail {

/// Objects in the order in which they were added. Each holds the pointer to the next one, so adding
/// needs no memory. An object is in at most one queue for each such pointer.
template <class T, T* T::*next> class linked_queue {
public:
    linked_queue() = default;
    linked_queue(const linked_queue&) = delete;
    linked_queue& operator=(const linked_queue&) = delete;

    void add(T& last) noexcept {
        last.*next = nullptr;
        *end_ = &last;
        end_ = &(last.*next);
    }
    T* take() noexcept {
        T* taken = first_;
        if (taken != nullptr) {
            first_ = taken->*next;
            end_ = first_ == nullptr ? &first_ : end_;
        }
        return taken;
    }
    T* first() const noexcept { return first_; }

private:
    T* first_ = nullptr;
    T** end_ = &first_;
};

} // namespace detail
} // namespace v1
} // namespace kel
