/// \file
/// Kind codes as the library's own kinds.
#pragma once

#include <kel/KELKind.h>
#include <optional>

namespace kel {

/// Returns the kind with the code, or nothing if no kind has it: files and a host's own values can
/// hold any code. Every code becomes a KELKind here, so a switch over kinds needs a case for each
/// of them and no default.
constexpr std::optional<KELKind> kindWithCode(int32_t code) {
    const auto kind = static_cast<KELKind>(code);
    switch (kind) {
#define KEL_CASE(name, ...) case KELKind_##name:
        KEL_EVERY_KIND(KEL_CASE)
#undef KEL_CASE
        return kind;
    }
    return std::nullopt;
}

/// Returns whether the contents of this kind are other values.
constexpr bool isContainer(KELKind kind) {
    switch (kind) {
#define KEL_CASE(name, code, type, words, isContainer, ...)                                        \
    case KELKind_##name:                                                                           \
        return isContainer;
        KEL_EVERY_KIND(KEL_CASE)
#undef KEL_CASE
    }
    return false; // not reached: every kind has a row
}

} // namespace kel
