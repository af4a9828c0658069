/// \file
/// Values that contain themselves and that nobody else holds.
#pragma once

#include "serial/ValueTable.h"

namespace kel {

/// Empties an array or a struct, so that reference counting can free it although it contains
/// itself. Does nothing to other kinds.
void takeApart(KEL_Impl& value) noexcept;

/// Takes apart the containers in a table that only the table and such containers hold. Without the
/// table nobody could reach them, and those that contain themselves would never be freed. Does
/// nothing if there is no memory for the search.
void takeApartUnheldLoops(const ValueTable& table) noexcept;

} // namespace kel
