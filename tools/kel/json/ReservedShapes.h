/// \file
/// The JSON spelling of guids and memory blocks: {"$guid": "..."} and {"$memblock": "..."}.
#pragma once

#include "document/Values.h"

namespace kel::tool {

constexpr const char* guidShape = "$guid";
constexpr const char* memBlockShape = "$memblock";

/// Returns the literal that the name equals if, as the only one of a struct, it can make the struct
/// stand for another value. Returns null for any other name.
const char* reservedName(const char* name);

/// Returns the guid or memory block that the struct stands for in JSON: its one variable is "$guid"
/// with a String in GUID layout or "$memblock" with a String in base64. Returns null for any other
/// struct, which is then just a struct.
Value valueOfShape(const KEL_Struct& structure);

/// Returns whether JSON would read the struct back as something other than a struct.
bool isReservedShape(const KEL_Struct& structure);

} // namespace kel::tool
