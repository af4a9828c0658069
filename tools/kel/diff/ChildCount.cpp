#include "diff/ChildCount.h"

namespace kel::tool {

int32_t childCountOf(const KEL& value) {
    switch (kindOf(value).kind) {
    case KELKind_Array:
        return dynamic_cast<const KEL_Array&>(value).getCount();
    case KELKind_IndexList:
        return dynamic_cast<const KEL_IndexList&>(value).getCount();
    case KELKind_Manager:
        return dynamic_cast<const KEL_Manager&>(value).size();
    case KELKind_Struct:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        return dynamic_cast<const KEL_Struct&>(value).getCount();
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_String:
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return 0;
}

} // namespace kel::tool
