/// \file
/// PathText: the path from a root value to one inside it, for people: `statuses[3].id`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kel::tool {

/// Builds the text of a path step by step. Names of letters, digits, "_" and "@" are written bare
/// after a dot, all others as `["..."]` with escapes. So a path is always one line of printable
/// text.
class PathText {
public:
    /// The greatest length. A longer path loses its middle: the path of a deeply nested value would
    /// fill the screen, and its two ends are enough.
    static constexpr size_t longest = 160;

    /// Adds the step to an element of an array.
    void addIndex(uint64_t index);
    /// Adds the step to a member of a struct.
    void addName(std::string_view name);
    /// Adds the step to an element of a manager, named by its identity in GUID layout.
    void addIdentity(std::string_view guid);

    /// Returns the path, or "(the value itself)" if there are no steps. A path longer than longest
    /// loses its middle.
    std::string take() const;

private:
    std::string text_;
};

/// Returns the text in a form that is safe for every terminal: control characters as \u00HH, and
/// bytes that are not valid UTF-8 as \xHH.
std::string withoutControls(std::string_view text);

} // namespace kel::tool
