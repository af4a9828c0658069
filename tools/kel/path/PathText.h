/// \file
/// PathText: the path from a root value to one inside it: `statuses[3].id`. Path reads it.
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

    /// The words for a root value in messages.
    static constexpr std::string_view ofRoot = "(the value itself)";

    /// Adds the step to an element of an array.
    void addIndex(uint64_t index);
    /// Adds the step to a member of a struct.
    void addName(std::string_view name);
    /// Adds the step to an element of a manager, named by its identity in GUID layout.
    void addIdentity(std::string_view guid);

    /// Returns the path for a message, or PathText::ofRoot if there are no steps. A path longer
    /// than longest loses its middle.
    std::string take() const;

    /// Returns the path without its middle if it is longer than longest.
    static std::string shortened(std::string path);

    /// Returns the whole path for programs, or "." if there are no steps.
    std::string whole() const { return text_.empty() ? "." : text_; }

private:
    std::string text_;
};

/// Returns whether a name of such characters is written in a path without quotes.
bool isBareInPath(char c);

/// Returns the path with the number of its root value before it, from 1, as in `2:statuses[3].id`,
/// if there are several root values.
/// \param root the number of the root value, from 0
std::string withRoot(const std::string& path, size_t root, size_t rootCount);

/// Returns the text in a form that is safe for every terminal: control characters as \u00HH, and
/// bytes that are not valid UTF-8 as \xHH.
std::string withoutControls(std::string_view text);

} // namespace kel::tool
