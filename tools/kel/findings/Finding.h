/// \file
/// Finding: one thing that check found in a file.
#pragma once

#include <kel/KEL.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kel::tool {

/// How serious a finding is.
enum class Severity {
    error,  ///< the file is malformed, or a value departs from its descriptor
    warning ///< the rules allow it, but it is probably a mistake
};

/// A thing that is wrong in a file, and where.
struct Finding {
    Severity severity = Severity::error;
    std::string path; ///< with the number of its root value if there are several; can be empty
    std::string message;
    /// The value that it is about, to find its place in text or JSON; null if the place is known.
    const KEL* value = nullptr;
    /// The struct of a variable without a value that the finding is about, otherwise null.
    const KEL* owner = nullptr;
    std::string name = {};                        ///< of that variable
    bool isOfValues = true;                       ///< whether values are not what the file spells
    std::optional<size_t> offset = std::nullopt;  ///< in bytes from the beginning of the file
    std::optional<size_t> earlier = std::nullopt; ///< the offset of what the finding repeats
    uint64_t line = 0;                            ///< from 1; 0 if it is unknown
    uint64_t column = 0;                          ///< in characters from 1; 0 if it is unknown
    std::string hint = {};    ///< what can be done; empty if nothing can be said
    std::string excerpt = {}; ///< its line with a mark, after a line end; can be empty
};

using Findings = std::vector<Finding>;

} // namespace kel::tool
