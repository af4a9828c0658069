/// \file
/// ChildCursor: a place among the direct children of a container.
#pragma once

#include "values/KEL_Impl.h"
#include "values/VariableName.h"

#include <map>
#include <string>

namespace kel {

/// Names in the order of their bytes, each with a value or null.
using VariableMap = std::map<VariableName, JPointer<KEL_Impl>, std::less<>,
                             Allocator<std::pair<const VariableName, JPointer<KEL_Impl>>>>;

/// Walks the direct children of one container in order, without allocating:
///
///     ChildCursor cursor(container);
///     while (cursor.next()) { use(cursor.name, cursor.value); }
///
/// The container must not change meanwhile.
struct ChildCursor {
    explicit ChildCursor(const KEL_Impl& from) : container(&from) {}

    /// Moves to the next child. \return false when there is none left
    bool next() { return container->nextChild(*this); }

    const KEL_Impl* container;
    int32_t index = -1;                   ///< the child's place, from 0
    VariableMap::const_iterator variable; ///< a struct's own place
    std::string_view name;                ///< a variable's; "keys" or "items" of a list; else empty
    KEL_Impl* value = nullptr;            ///< the child, borrowed; null for a null variable
};

} // namespace kel
