/// \file
/// runToEnd and runAll: steps that are all carried out, also when one of them throws.
#pragma once

#include <kel/JException.h>
#include <kel/KELException.h>

namespace kel {

/// Runs a step of which a failure must not reach the caller, because an earlier one will. A failure
/// thrown as a pointer is freed.
/// \return what the step returns; true if it throws
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

/// Repeats step until it returns false. A step that throws does not keep the next ones from being
/// run; at the end the first failure reaches the caller. So all observers are notified of a change
/// that was made, whatever some of them throw.
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

/// Runs the actions in order, each also when one before it throws; then the first failure reaches the caller.
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
