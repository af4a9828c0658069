/// \file
/// ValueOffsets: where the values that findings are about begin in a text.
#pragma once

#include "findings/Finding.h"

#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace kel::tool {

/// Stores the offsets of the values that findings are about, and of no others.
class ValueOffsets {
public:
    /// Requests the offset of what the finding is about.
    void want(const Finding& finding) {
        if (finding.value != nullptr) {
            values_[finding.value];
        } else if (finding.owner != nullptr) {
            nulls_[{finding.owner, finding.name}];
        }
    }

    /// Returns whether no offset was requested.
    bool isEmpty() const { return values_.empty() && nulls_.empty(); }

    /// Stores the offset of a value, which replaces an earlier one. Ignores other values and null.
    void note(const KEL* value, size_t at) {
        const auto wanted = values_.find(value);
        if (wanted != values_.end()) {
            wanted->second = at;
        }
    }

    /// Stores the offset of a variable without a value.
    void noteNull(const KEL* owner, std::string_view name, size_t at) {
        if (nulls_.empty()) {
            return;
        }
        const auto wanted = nulls_.find({owner, std::string(name)});
        if (wanted != nulls_.end()) {
            wanted->second = at;
        }
    }

    /// Returns the offset of what the finding is about, or nothing if it is unknown.
    std::optional<size_t> of(const Finding& finding) const {
        if (finding.value != nullptr) {
            return values_.at(finding.value);
        }
        return finding.owner != nullptr ? nulls_.at({finding.owner, finding.name}) : std::nullopt;
    }

private:
    std::unordered_map<const KEL*, std::optional<size_t>> values_;
    std::map<std::pair<const KEL*, std::string>, std::optional<size_t>> nulls_;
};

} // namespace kel::tool
