/// \file
/// PathText: the way from a root value to one inside it, for people: `statuses[3].id`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kel::tool {

/// Builds the text of a path step by step. Names of letters, digits, "_" and "@" stand bare after a
/// dot, all others as `["..."]` with escapes, so a path is always one line of printable text.
class PathText {
public:
    /// A longer path loses its middle: of a deeply nested value it would fill the screen, and its
    /// two ends are enough.
    static constexpr size_t longest = 160;

    /// Into the element of an array.
    void addIndex(uint64_t index);
    /// Into the member of a struct.
    void addName(std::string_view name);
    /// Into the element of a manager, named by its identity in GUID layout.
    void addIdentity(std::string_view guid);

    /// The path; "(the value itself)" without any step. What is longer than longest loses its
    /// middle.
    std::string take() const;

private:
    std::string text_;
};

/// The text in a form that no terminal stumbles over: control characters as \u00HH, bytes that are
/// no UTF-8 as \xHH.
std::string withoutControls(std::string_view text);

} // namespace kel::tool
