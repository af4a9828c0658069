/// \file
/// Path: the steps from a root value to one inside it, read from the text that PathText writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::tool {

/// A step from a container to a value in it.
struct Step {
    enum class Kind {
        index,   ///< of an element of an array, or of a pair of an index list: `[3]`
        name,    ///< of a variable, or key or item of a pair: `.name`, `["odd name"]`
        identity ///< of an element of a manager, or at first of any value: `#3F25...`
    };

    Kind kind;
    uint64_t index = 0; ///< of an element
    std::string text;   ///< the name, or the digits of the identity or their beginning
};

/// Where a value stands in a document. It is text such as
///
/// - `window.size[0]`: the first element of the variable size of the variable window
/// - `["odd name"].x`: names of other characters than letters, digits, "_" and "@" are quoted; in
///   quotes `\"`, `\\`, `\u00HH` and `\xHH` stand for the characters that PathText writes so, and
///   `\n` and `\t` for a line end and a tab; every other escape is refused
/// - `[3].key`: the key of the fourth pair of an index list
/// - `presets#3F2504E0-4F89-11D3-9A0C-0305E82C3301.name`: a manager's element by its identity; the
///   first digits suffice if they fit one value alone; at the beginning: any value of the document
/// - `2:window`: inside the second root value
/// - `.`: a root value itself
struct Path {
    std::optional<size_t> root; ///< the number of the root value, from 0, if the path has one
    std::vector<Step> steps;

    /// Reads the path from its text.
    /// \throws Failure usage: `"TEXT": what is wrong at character N`
    static Path of(std::string_view text);

    /// Returns the text of the first steps.
    /// \param count how many steps, at most all
    std::string text(size_t count) const;

    /// Returns the text of the path for messages, with the number of its root value if it has one.
    /// A path that is longer than PathText::longest loses its middle.
    std::string text() const;
};

} // namespace kel::tool
