#include "json/ReservedShapes.h"

#include "words/GuidText.h"
#include "json/Base64.h"

#include <cstring>
#include <limits>

namespace kel::tool {

namespace {

/// Returns the text of the struct's variable if it is the only one and a String, otherwise null.
const char* onlyText(const KEL_Struct& structure, const char* name) {
    if (structure.getCount() != 1 || !structure.containsVar(name)) {
        return nullptr;
    }
    const KEL* value = memberOf(structure, name);
    return value != nullptr && value->getType() == KELKind_String ? value->toString() : nullptr;
}

} // namespace

const char* reservedName(const char* name) {
    if (*name != '$') {
        return nullptr;
    }
    return std::strcmp(name, guidShape) == 0       ? guidShape
           : std::strcmp(name, memBlockShape) == 0 ? memBlockShape
                                                   : nullptr;
}

Value valueOfShape(const KEL_Struct& structure) {
    if (const char* text = onlyText(structure, guidShape)) {
        const std::optional<JHashCode> guid = guidOfText(text);
        return guid ? made(CreateKELGuid(guid->toGuid())) : nullptr;
    }
    if (const char* text = onlyText(structure, memBlockShape)) {
        const std::optional<std::vector<uint8_t>> bytes = fromBase64(text);
        // not reached: so large a block takes 3 GB of text
        if (bytes && bytes->size() <= std::numeric_limits<int32_t>::max()) {
            return made(CreateKELMemBlock(static_cast<int32_t>(bytes->size()), bytes->data()));
        }
    }
    return nullptr;
}

bool isReservedShape(const KEL_Struct& structure) {
    return valueOfShape(structure) != nullptr;
}

} // namespace kel::tool
