/// \file
/// A checked struct of each kind of variable, and what it refuses.
#pragma once

#include <kel/kel.hpp>

#include <gtest/gtest.h>

namespace checked_test {

inline kel::checked makePanel() {
    return kel::checked(
        {{"gain", kel::describe<double>().range(-60, 6).fallback(0).step(0.5).unit(" dB")},
         {"mode",
          kel::describe<std::string>().one_of({"mono", "stereo", "surround"}).fallback("stereo")},
         {"voices", kel::describe<int>().range(1, 16)},
         {"angle", kel::describe<int>().range(0, 360).fallback(0).wraps()},
         {"free", kel::describe<bool>()}});
}

inline std::string refusal(kel::checked& panel, const char* name, const kel::value& content) {
    const kel::outcome done = panel.try_set(name, content);
    return done ? "(stored)" : done.message();
}

} // namespace checked_test
