/// \file
/// Threads of a host, and how they hand values to each other.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <latch>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace host {

/// Runs the action on this many threads, which begin at the same time. The action receives the
/// thread's number.
/// \return the messages of the exceptions that ended a thread
inline std::string failuresOf(int count, const std::function<void(int)>& action) {
    std::latch begin(count);
    std::mutex lock;
    std::string failures;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            begin.arrive_and_wait();
            try {
                action(i);
            } catch (const std::exception& failure) {
                const std::lock_guard<std::mutex> guard(lock);
                failures += failure.what() + std::string("\n");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return failures;
}

/// A queue from threads to threads: the synchronisation that a host owes.
template <class T> class Mailbox {
public:
    void send(T item) {
        {
            const std::lock_guard<std::mutex> guard(lock_);
            items_.push_back(std::move(item));
        }
        arrived_.notify_one();
    }

    /// Waits for an item. Returns nothing when the box is closed and empty.
    std::optional<T> receive() {
        std::unique_lock<std::mutex> guard(lock_);
        arrived_.wait(guard, [this] { return isClosed_ || !items_.empty(); });
        return take();
    }

    /// Returns an item if one is there.
    std::optional<T> poll() {
        const std::lock_guard<std::mutex> guard(lock_);
        return take();
    }

    /// Ends the waiting of all receivers, after the items that are left.
    void close() {
        {
            const std::lock_guard<std::mutex> guard(lock_);
            isClosed_ = true;
        }
        arrived_.notify_all();
    }

private:
    std::optional<T> take() {
        if (items_.empty()) {
            return std::nullopt;
        }
        std::optional<T> item(std::move(items_.front()));
        items_.pop_front();
        return item;
    }

    std::mutex lock_;
    std::condition_variable arrived_;
    std::deque<T> items_;
    bool isClosed_ = false;
};

} // namespace host
