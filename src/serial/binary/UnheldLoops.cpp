#include "serial/binary/UnheldLoops.h"

#include "values/ChildCursor.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <new>
#include <unordered_map>
#include <vector>

namespace kel {

namespace {

int32_t holdersOf(KEL_Impl& value) {
    value.addRef();
    return value.release();
}

/// The containers of a table and below, each with the number of its unknown holders. Known holders
/// are the table and the other containers.
class Holders {
public:
    explicit Holders(const ValueTable& table) {
        table.forEach([this](KEL_Impl& value) { countHolder(value); });
        while (!toVisit_.empty()) {
            visitChildren(&Holders::countHolder);
        }
    }

    /// Visits the containers that no unknown holder can reach, and leaves out the others.
    template <class Visit> void forEachUnheld(const Visit& visit) {
        for (const auto& [value, unknown] : unknown_) {
            if (unknown > 0) {
                toVisit_.push_back(value);
            }
        }
        while (!toVisit_.empty()) {
            visitChildren(&Holders::markHeld);
        }
        for (const auto& [value, unknown] : unknown_) {
            if (unknown == 0) {
                visit(*value);
            }
        }
    }

private:
    void visitChildren(void (Holders::*visit)(KEL_Impl&)) {
        const KEL_Impl* value = toVisit_.back();
        toVisit_.pop_back();
        for (ChildCursor cursor(*value); cursor.next();) {
            if (cursor.value != nullptr) {
                (this->*visit)(*cursor.value);
            }
        }
    }

    void countHolder(KEL_Impl& value) {
        if (value.isContainer()) {
            const auto [entry, isNew] = unknown_.try_emplace(&value, holdersOf(value));
            --entry->second;
            if (isNew) {
                toVisit_.push_back(&value);
            }
        }
    }

    void markHeld(KEL_Impl& value) {
        const auto entry = unknown_.find(&value);
        if (entry != unknown_.end() && entry->second == 0) {
            entry->second = 1;
            toVisit_.push_back(&value);
        }
    }

    std::unordered_map<KEL_Impl*, int32_t> unknown_;
    std::vector<KEL_Impl*> toVisit_;
};

} // namespace

void takeApart(KEL_Impl& value) noexcept {
    value.dropChildren(); // notifies nobody, since no host can reach the value
}

void takeApartUnheldLoops(const ValueTable& table) noexcept {
    try {
        std::vector<JPointer<KEL_Impl>> unheld; // keeps the values until all are empty
        Holders(table).forEachUnheld(
            [&](KEL_Impl& value) { unheld.push_back(JPointer<KEL_Impl>::share(&value)); });
        for (const JPointer<KEL_Impl>& value : unheld) {
            takeApart(*value);
        }
    } catch (const std::bad_alloc&) {
        // The values remain allocated, like values that a host never takes apart.
    }
}

} // namespace kel
