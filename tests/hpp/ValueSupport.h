/// \file
/// A room with variables, and what a call throws, for the tests of handles and containers.
#pragma once

#include "References.h"

#include <gtest/gtest.h>

namespace value_test {

/// Returns the message of the Failure that the action throws, or what else happened.
template <class Failure, class Action> std::string thrown(const Action& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    } catch (const std::exception& failure) {
        return std::string("(another failure: ") + failure.what() + ")";
    }
    return "(nothing thrown)";
}

inline kel::value kitchen() {
    return kel::object({{"name", "Kitchen"},
                        {"degrees", 19.5},
                        {"windows", 2},
                        {"tags", kel::array({1, "two", true})}});
}

} // namespace value_test
