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
        KEL_Impl* before = table_.put(identity, &value);
        value.addRef();
        if (before != nullptr) {
            before->release();
        }
    }

    /// A point to roll back to, and forgetting all identities first seen since.
    std::size_t mark() const { return table_.mark(); }
    void rollBack(std::size_t mark) { table_.rollBack(mark, &release); }

private:
    static void release(KEL_Impl* value) { value->release(); }

    IdentityTable table_;
};

} // namespace kel
