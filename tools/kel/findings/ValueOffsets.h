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
    /// Requests the offset of what the finding is about. A finding about neither a value nor null
    /// must stay where it is. Such findings are requested in the order of the file.
    void want(const Finding& finding) {
        if (finding.value != nullptr) {
            values_[finding.value];
        } else if (finding.owner != nullptr) {
            nulls_[{finding.owner, finding.name}];
        } else if (!finding.path.empty()) {
            places_.push_back(&finding);
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

    /// Returns whether an offset is wanted of what no value holds.
    bool wantsPlace() const { return nextPlace_ < places_.size(); }

    /// Stores the offset of a place that values do not hold as it is written, if it is the next one
    /// that is wanted.
    void notePlace(std::string_view path, size_t at) {
        if (wantsPlace() && places_[nextPlace_]->path == path) {
            offsets_[places_[nextPlace_++]] = at;
        }
    }

    /// Returns the offset of what the finding is about, or nothing if it is unknown.
    std::optional<size_t> of(const Finding& finding) const {
        if (finding.value != nullptr) {
            return values_.at(finding.value);
        }
        if (finding.owner != nullptr) {
            return nulls_.at({finding.owner, finding.name});
        }
        const auto place = offsets_.find(&finding);
        return place == offsets_.end() ? std::nullopt : std::optional(place->second);
    }

private:
    std::unordered_map<const KEL*, std::optional<size_t>> values_;
    std::map<std::pair<const KEL*, std::string>, std::optional<size_t>> nulls_;
    std::vector<const Finding*> places_;
    size_t nextPlace_ = 0;
    std::unordered_map<const Finding*, size_t> offsets_; ///< of places
};

} // namespace kel::tool
