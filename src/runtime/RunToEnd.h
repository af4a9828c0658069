/// \file
/// runToEnd and runAll: they carry out all steps, even when one of them throws.
#pragma once

#include <kel/JException.h>
#include <kel/KELException.h>

namespace kel {

/// Runs a step whose failure must not reach the caller, because an earlier one will. A failure
/// thrown as a pointer is freed.
/// \return the result of the step; true if it throws
template <class Step> bool runQuietly(const Step& step) {
    try {
        return step();
    } catch (KELException* failure) {
        failure->release();
    } catch (JException* failure) {
        failure->release();
    } catch (...) { // thrown by value: it ends here
    }
    return true;
}

/// Repeats step until it returns false. The steps after one that throws are run too; at the end the
/// first failure reaches the caller. So all observers are notified of a change that was made, even
/// if some of them throw.
template <class Step> void runToEnd(const Step& step) {
    try {
        while (step()) {
        }
    } catch (...) {
        while (runQuietly(step)) {
        }
        throw;
    }
}

/// Runs the actions in order, each one even when an earlier one throws. At the end the first
/// failure reaches the caller.
template <class First, class... Rest> void runAll(const First& first, const Rest&... rest) {
    if constexpr (sizeof...(rest) == 0) {
        first();
    } else {
        try {
            first();
        } catch (...) {
            const auto run = [](const auto& action) {
                return runQuietly([&] { return action(), false; });
            };
            (run(rest), ...);
            throw;
        }
        runAll(rest...);
    }
}

} // namespace kel
