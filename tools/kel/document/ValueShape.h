/// \file
/// ValueShape: how values hold others.
#pragma once

#include "document/Values.h"

namespace kel::tool {

/// How a value holds others.
enum class ValueShape {
    scalar,    ///< it holds none
    array,     ///< by number
    variables, ///< by name
    pairs,     ///< two by each number
    managed    ///< by identity
};

/// Returns how the value holds others. Selectors, which no file can hold, count as scalars.
/// \throws Failure malformed for an unknown kind
inline ValueShape shapeOf(const KEL& value) {
    switch (kindOf(value).kind) {
    case KELKind_Array:
        return ValueShape::array;
    case KELKind_Struct:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        return ValueShape::variables;
    case KELKind_IndexList:
        return ValueShape::pairs;
    case KELKind_Manager:
        return ValueShape::managed;
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    // not reached: no file can hold a selector
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return ValueShape::scalar;
}

} // namespace kel::tool
