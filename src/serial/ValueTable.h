/// \file
/// ValueTable: the values that a stream has read, by identity.
#pragma once

#include "serial/IdentityTable.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Struct_Impl.h"

namespace kel {

/// Holds a reference to each value that it was ever told to remember. Remembering only makes a
/// note: most inputs never refer back, and are spared the search for every value's place.
class ValueTable {
public:
    ValueTable() = default;
    ValueTable(const ValueTable&) = delete;
    ValueTable& operator=(const ValueTable&) = delete;
    ~ValueTable() { table_.forEach(&release); }

    /// The value of the identity, borrowed; null when there is none. Of several the last one.
    KEL_Impl* find(const JHashCode& identity) {
        table_.indexAdded();
        return table_.find(identity);
    }

    /// Remembers a value, in place of one that had the identity before. The zero identity is no
    /// identity: it is never remembered.
    void remember(const JHashCode& identity, KEL_Impl& value) {
        if (!identity.isZero()) {
            table_.add(identity, &value);
            value.addRef();
        }
    }

    /// Begins what rollBack may undo.
    void begin() { mark_ = table_.mark(); }

    /// Forgets what was remembered since begin, and finds again what that had replaced. Nobody else
    /// has the forgotten values, so containers are emptied: some may hold themselves.
    void rollBack() {
        table_.rollBack(mark_, [](KEL_Impl* value) {
            takeApart(*value);
            value->release();
        });
    }

private:
    static void release(KEL_Impl* value) { value->release(); }

    static void takeApart(KEL_Impl& value) {
        if (auto* array = dynamic_cast<KEL_Array_Impl*>(&value)) {
            array->removeAllVars();
        } else if (auto* structure = dynamic_cast<KEL_Struct_Impl*>(&value)) {
            structure->removeAllVars();
        }
    }

    IdentityTable table_;
    std::size_t mark_ = 0;
};

} // namespace kel
