/// \file
/// ChildCursor: a place among the direct children of a container.
#pragma once

#include "values/KEL_Impl.h"
#include "values/VariableTable.h"

namespace kel {

/// Walks the direct children of one container in order, without allocating:
///
///     ChildCursor cursor(container);
///     while (cursor.next()) { use(cursor.name, cursor.value); }
///
/// The container must not change meanwhile.
struct ChildCursor {
    explicit ChildCursor(const KEL_Impl& from) : container(&from) {}

    /// Moves to the next child. \return false when there is none left
    bool next() {
        if (!variables.hasMoreInRun()) {
            return container->nextChild(*this);
        }
        ++index;
        ++variables.variable; // without a virtual call for each variable
        showVariable();
        return true;
    }

    /// Shows the variable that the walk over a struct has reached.
    void showVariable() {
        name = variables.variable->name.view();
        value = variables.variable->value;
    }

    const KEL_Impl* container;
    int32_t index = -1;            ///< the child's place, from 0
    VariableTable::Walk variables; ///< a struct's own place
    std::string_view name;         ///< a variable's; "keys" or "items" of a list; else empty
    KEL_Impl* value = nullptr;     ///< the child, borrowed; null for a null variable
};

} // namespace kel
