/// \file
/// ValueList: the elements of an array or of a manager.
#pragma once

#include "runtime/ObjectList.h"
#include "values/KEL_Impl.h"

namespace kel {

/// An ordered list of shared values.
using ValueList = ObjectList<KEL_Impl>;

} // namespace kel
