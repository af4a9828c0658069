/// \file
/// What the functions of subscriptions were called with.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <kel/kel.hpp>
#include <string>
#include <utility>
#include <vector>

/// A subscription whose calls are written down. A test can have something else happen in a call.
class RecordedCalls : public ::testing::Test {
protected:
    using Calls = std::vector<std::string>;

    /// Writes a call down and does what the test wants.
    void record(std::string call) {
        calls.push_back(std::move(call));
        const std::function<void()> action = then;
        if (action) {
            action();
        }
    }

    /// Returns the calls that an action causes.
    template <class Action> Calls during(const Action& action) {
        calls.clear();
        action();
        return calls;
    }

    void TearDown() override { watched.end(); }

    Calls calls;
    std::function<void()> then;
    kel::subscription watched;
};
