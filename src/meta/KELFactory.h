/// \file
/// The factory of values by kind.
#pragma once

#include "values/KEL_Impl.h"

namespace kel {

/// Returns a new empty value of the kind, owned by the caller. It has the given identity or, for
/// null, a fresh one.
/// \throws KELNoSuchTypeException "createKel: Unknown type."
/// \throws JOutOfMemoryException "Out of memory!", by value, for every kind
KEL_Impl* createValue(int32_t kind, const JHashCode* identity);

} // namespace kel
