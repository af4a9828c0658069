/// \file
/// How a fuzz target reports that a property does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kel::fuzz {

/// Prints lines to the standard error stream.
template <class... Lines> void printLines(const Lines&... lines) {
    for (const std::string_view line : {std::string_view(lines)...}) {
        std::fwrite(line.data(), 1, line.size(), stderr);
        std::fputc('\n', stderr);
    }
}

/// Prints what is wrong and ends the process, so that the fuzzer keeps the input.
[[noreturn]] inline void fail(std::string_view property, std::string_view detail = "") {
    printLines("The property does not hold:", property, detail);
    std::abort();
}

/// Ends the process if the property does not hold.
inline void require(bool holds, std::string_view property, std::string_view detail = "") {
    if (!holds) {
        fail(property, detail);
    }
}

/// Ends the process and prints both texts if they differ.
inline void requireSame(std::string_view got, std::string_view expected,
                        std::string_view property) {
    if (got != expected) {
        printLines("got:", got, "expected:", expected);
        fail(property);
    }
}

} // namespace kel::fuzz
