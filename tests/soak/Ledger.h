/// \file
/// Ledger: counts values that are alive.
#pragma once

#include <kel/kel.hpp>

#include <cstdint>
#include <mutex>
#include <vector>

namespace soak {

/// Holds one reference to each of many values until all others must have been released. Any thread
/// can add values.
class Ledger {
public:
    /// Adds the values of a tree.
    void add(std::vector<kel::value> values) {
        const std::lock_guard<std::mutex> guard(lock_);
        for (kel::value& each : values) {
            held_.push_back(std::move(each));
        }
    }

    /// Releases the values to which nothing but the ledger refers, again and again, because each
    /// can be the last holder of others. What is left is held by something that should have ended.
    /// \return the number of values that are left, which it forgets
    std::size_t settle() {
        const std::lock_guard<std::mutex> guard(lock_);
        count_ += held_.size();
        for (std::size_t before = held_.size() + 1; held_.size() < before;) {
            before = held_.size();
            std::vector<kel::value> left;
            for (kel::value& each : held_) {
                KEL* value = each.raw();
                value->addRef();
                if (value->release() == 1) {
                    each = nullptr;
                } else {
                    left.push_back(std::move(each));
                }
            }
            held_ = std::move(left);
        }
        const std::size_t left = held_.size();
        held_ = {};
        return left;
    }

    /// Returns the number of values that were ever added and settled.
    uint64_t count() const { return count_; }

private:
    std::mutex lock_;
    std::vector<kel::value> held_;
    uint64_t count_ = 0;
};

} // namespace soak
