/// \file
/// The length of texts: how it is counted, and what a description allows.
#pragma once

#include <kel/cpp/reached.hpp>

#include <optional>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the number of characters of a text in UTF-8. Each byte that does not belong to a
/// character counts as one, so a text has at most four bytes for each.
inline std::int32_t characters_in(const char* text) {
    constexpr unsigned first_of_two = 0xC2, first_of_three = 0xE0, first_of_four = 0xF0,
                       beyond = 0xF5, marks = 0xC0, following = 0x80;
    std::int32_t count = 0;
    while (*text != '\0') {
        const unsigned lead = static_cast<unsigned char>(*text++);
        const int rest = lead < first_of_two || lead >= beyond ? 0
                         : lead < first_of_three               ? 1
                         : lead < first_of_four                ? 2
                                                               : 3;
        int found = 0;
        while (found < rest &&
               (static_cast<unsigned char>(text[found]) & marks) == following) { // stops at the NUL
            ++found;
        }
        if (found == rest) {
            text += rest;
        }
        ++count;
    }
    return count;
}

/// Returns the most characters that a described text can have, if the description states that in a
/// property of kel.hpp's own. The library and the tool do not look at it.
inline std::optional<std::int32_t> longest_of(const MetaKelVarDescriptor& rules) {
    KELVarCursor at;
    std::int32_t most = 0;
    return walk_of(rules.getStruct())->findVar(at, "longest") && at.value != nullptr &&
                   read(*at.value, most) == reading::done
               ? std::optional<std::int32_t>(most)
               : std::nullopt;
}

/// Returns whether a described text can be empty, which is stated in the same way.
inline bool allows_empty(const MetaKelVarDescriptor& rules) {
    KELVarCursor at;
    return !walk_of(rules.getStruct())->findVar(at, "not_empty") || at.value == nullptr ||
           !at.value->toBoolean();
}

inline bool limits_length(const MetaKelVarDescriptor& rules) {
    return longest_of(rules) || !allows_empty(rules);
}

inline std::string counted_characters(std::int32_t count) {
    return std::to_string(count) + (count == 1 ? " character" : " characters");
}

/// Returns words for the texts that a description allows by their length.
inline std::string allowed_lengths(const MetaKelVarDescriptor& rules) {
    const std::optional<std::int32_t> longest = longest_of(rules);
    const bool can_be_empty = allows_empty(rules);
    return !longest        ? (can_be_empty ? "any text" : "any text that is not empty")
           : can_be_empty  ? "any text of at most " + counted_characters(*longest)
           : *longest == 1 ? "any text of 1 character"
                           : "any text of 1 to " + counted_characters(*longest);
}

/// Returns why the length of a text is not allowed, as words for the text, or nothing.
inline std::string refused_length(const MetaKelVarDescriptor& rules, const char* text) {
    if (*text == '\0') {
        return allows_empty(rules) ? "" : "an empty text";
    }
    const std::optional<std::int32_t> longest = longest_of(rules);
    const std::int32_t count = longest ? characters_in(text) : 0;
    return longest && count > *longest ? "a text of " + counted_characters(count) : "";
}

} // namespace detail
} // namespace v1
} // namespace kel
