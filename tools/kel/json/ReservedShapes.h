/// \file
/// How JSON spells the values that it has no form for: {"$guid": "..."} and {"$memblock": "..."}.
#pragma once

#include "Values.h"

namespace kel::tool {

constexpr const char* guidShape = "$guid";
constexpr const char* memBlockShape = "$memblock";

/// True for the one name of a struct that may stand for another value.
bool isReservedName(const char* name);

/// The guid or memory block that the struct stands for in JSON: its one variable is "$guid" with a
/// String in GUID layout or "$memblock" with a String in base64. Null for any other struct, which
/// then is just a struct.
Value valueOfShape(const KEL_Struct& structure);

/// True when JSON would read the struct back as something else than a struct.
bool isReservedShape(const KEL_Struct& structure);

} // namespace kel::tool
