/// \file
/// ValueTable: the values that a stream has read, by identity.
#pragma once

#include "serial/IdentityIndex.h"
#include "values/KEL_Impl.h"

#include <algorithm>
#include <utility>

namespace kel {

/// Holds a reference to each value that it remembers. Remembering only makes a note: most inputs
/// never refer back, so they do not pay for finding a place for every value.
class ValueTable {
public:
    /// A borrowed value and its number; null and IdentityIndex::none if there is none.
    struct Found {
        KEL_Impl* value;
        uint32_t number;
    };

    ValueTable() = default;
    ValueTable(const ValueTable&) = delete;
    ValueTable& operator=(const ValueTable&) = delete;
    ~ValueTable() {
        forEach([](KEL_Impl& value) { value.JObject::release(); });
    }

    /// Remembers a value. From now on its identity leads to this value and not to an earlier one.
    /// \return its number; numbers count up from 0
    uint32_t remember(const JHashCode& identity, KEL_Impl& value) {
        const uint32_t number = index_.append(identity);
        try {
            values_.append(&value);
        } catch (...) {
            index_.truncate(number);
            throw;
        }
        value.JObject::addRef(); // without a virtual call
        return number;
    }

    /// Returns the value of an identity. If several values have it, returns the last one.
    Found find(const JHashCode& identity) {
        linkNotes();
        const uint32_t number = index_.find(identity);
        if (number == IdentityIndex::none || values_[number] == nullptr) {
            return {nullptr, IdentityIndex::none};
        }
        return {values_[number], number};
    }

    /// Returns the value of a number, borrowed, or null if it was forgotten.
    KEL_Impl* at(uint32_t number) const { return values_[number]; }

    /// Forgets and releases a value. Its identity then leads to the same value as before this one.
    /// If several values have one identity, forget the last one first.
    void forget(uint32_t number) noexcept {
        if (number < linked_ && index_.find(index_.identityAt(number)) == number) {
            const auto entry = std::lower_bound(
                repetitions_.begin(), repetitions_.end(), number,
                [](const Repetition& repetition, uint32_t n) { return repetition.later < n; });
            if (entry != repetitions_.end() && entry->later == number) {
                index_.redirect(index_.identityAt(number), entry->earlier);
            }
        }
        std::exchange(values_[number], nullptr)->release();
    }

    /// Returns the number that the next value will have.
    uint32_t size() const { return index_.size(); }

    /// Calls visit with every value in the order of arrival.
    template <class Visit> void forEach(const Visit& visit) const {
        for (std::size_t number = 0; number < values_.size(); ++number) {
            if (KEL_Impl* value = values_[number]; value != nullptr) {
                visit(*value);
            }
        }
    }

private:
    /// Two values of the same identity, which leads to the later one.
    struct Repetition {
        uint32_t earlier;
        uint32_t later;
    };

    void linkNotes() {
        for (; linked_ < index_.size(); ++linked_) {
            if (values_[linked_] == nullptr) {
                continue; // forgotten
            }
            uint32_t& lead = index_.link(linked_);
            if (lead != linked_) {
                repetitions_.push_back({lead, linked_});
                lead = linked_;
            }
        }
    }

    IdentityIndex index_;
    BlockList<KEL_Impl*> values_;         // null where forgotten
    uint32_t linked_ = 0;                 // values from this number on are notes
    std::vector<Repetition> repetitions_; // in the order of the later values
};

} // namespace kel
