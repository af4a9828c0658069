/// \file
/// An int that is watched, and observers of another make, for the tests of kel::watch.
#pragma once

#include "References.h"

#include <kel/kel.hpp>

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace watch_test {

/// An observer of another make.
class ForeignObserver : public KEL_Observer {
public:
    explicit ForeignObserver(std::function<void()> action) : action_(std::move(action)) {}
    void update(KEL*) override { action_(); }

private:
    std::function<void()> action_;
};

inline KEL_Observable& observable(const kel::value& of) {
    return *dynamic_cast<KEL_Observable*>(of.raw());
}

/// An int, and subscriptions that write their letter into a log.
class HppWatch : public ::testing::Test {
protected:
    static void nothing() {}

    /// Returns a function that writes a letter and then runs an action.
    auto writing(char letter, std::function<void()> action = nothing) {
        return [this, letter, action = std::move(action)](const kel::value&) {
            log += letter;
            action();
        };
    }

    /// Changes the int and returns the letters of those that were called.
    std::string change() {
        log.clear();
        number.assign(number.get<int>() + 1);
        return log;
    }

    std::string log;
    kel::value number = 0;
    kel::subscription a;
    kel::subscription b;
    kel::subscription c;
};

} // namespace watch_test
