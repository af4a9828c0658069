/// \file
/// ValueTable: the values that a stream has read, by identity.
#pragma once

#include "serial/IdentityTable.h"
#include "values/KEL_Impl.h"

namespace kel {

/// Holds one reference to each value that it remembers.
class ValueTable {
public:
    ValueTable() = default;
    ValueTable(const ValueTable&) = delete;
    ValueTable& operator=(const ValueTable&) = delete;
    ~ValueTable() { table_.forEach(&release); }

    /// The value of the identity, borrowed; null when there is none.
    KEL_Impl* find(const JHashCode& identity) const { return table_.find(identity); }

    /// Remembers a value, in place of one that had the identity before. The zero identity is no
    /// identity: it is never remembered.
    void remember(const JHashCode& identity, KEL_Impl& value) {
        if (identity.isZero()) {
            return;
        }
        if (KEL_Impl* before = table_.find(identity)) {
            replaced_.push_back({identity, JPointer<KEL_Impl>::share(before)});
        }
        exchange(identity, value);
    }

    /// Begins what rollBack may undo.
    void begin() {
        replaced_.clear();
        mark_ = table_.mark();
    }

    /// Forgets what was remembered since begin, and remembers what that had replaced.
    void rollBack() {
        for (; !replaced_.empty(); replaced_.pop_back()) {
            exchange(replaced_.back().identity, *replaced_.back().value);
        }
        table_.rollBack(mark_, &release);
    }

private:
    /// A value whose identity came again.
    struct Replaced {
        JHashCode identity;
        JPointer<KEL_Impl> value;
    };

    static void release(KEL_Impl* value) { value->release(); }

    void exchange(const JHashCode& identity, KEL_Impl& value) {
        KEL_Impl* before = table_.put(identity, &value);
        value.addRef();
        if (before != nullptr) {
            before->release();
        }
    }

    IdentityTable table_;
    std::vector<Replaced> replaced_; // since begin, the last one last
    std::size_t mark_ = 0;
};

} // namespace kel
