/// \file
/// The kind codes of values. They are stored in files: a number is never used again for another
/// kind.
#pragma once

#include <kel/config.h>

/// The kind of a value, as KEL::getType answers it and KEL_Manager::createKel takes it. The numbers
/// between the groups name no kind.
enum KELKind : int32_t {
    KELKind_Int = 1,
    KELKind_Boolean = 2,
    KELKind_Double = 3,
    KELKind_guid = 4,
    KELKind_MemBlock = 5,
    KELKind_String = 6,
    KELKind_Array = 7,
    KELKind_Struct = 8,
    KELKind_Manager = 9,
    KELKind_Selector = 10,
    KELKind_MultiSelector = 11,
    KELKind_IndexList = 12,
    KELKind_MetaKel = 50,
    KELKind_MetaKelDescriptor = 51,
    KELKind_MetaKelVarDescriptor = 52
};
