/// \file
/// ValueTable: the values that a stream has read, by identity.
#pragma once

#include "serial/IdentityTable.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Struct_Impl.h"

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

    /// Forgets what was remembered since begin, and remembers what that had replaced. Nobody else
    /// has the forgotten values, so containers are emptied: some may hold themselves.
    void rollBack() {
        for (; !replaced_.empty(); replaced_.pop_back()) {
            takeApart(*table_.find(replaced_.back().identity));
            exchange(replaced_.back().identity, *replaced_.back().value);
        }
        table_.rollBack(mark_, [](KEL_Impl* value) {
            takeApart(*value);
            value->release();
        });
    }

private:
    /// A value whose identity came again.
    struct Replaced {
        JHashCode identity;
        JPointer<KEL_Impl> value;
    };

    static void release(KEL_Impl* value) { value->release(); }

    static void takeApart(KEL_Impl& value) {
        if (auto* array = dynamic_cast<KEL_Array_Impl*>(&value)) {
            array->removeAllVars();
        } else if (auto* structure = dynamic_cast<KEL_Struct_Impl*>(&value)) {
            structure->removeAllVars();
        }
    }

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
