#include "diff/ChildCount.h"

#include "document/ValueShape.h"

namespace kel::tool {

int32_t childCountOf(const KEL& value) {
    switch (shapeOf(value)) {
    case ValueShape::array:
        return dynamic_cast<const KEL_Array&>(value).getCount();
    case ValueShape::pairs:
        return dynamic_cast<const KEL_IndexList&>(value).getCount();
    case ValueShape::managed:
        return dynamic_cast<const KEL_Manager&>(value).size();
    case ValueShape::variables:
        return dynamic_cast<const KEL_Struct&>(value).getCount();
    case ValueShape::scalar:
        break;
    }
    return 0;
}

} // namespace kel::tool
