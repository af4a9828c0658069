#include "values/Conversions.h"

#include "runtime/Text.h"
#include "values/KEL_String_Impl.h"
#include "values/Kinds.h"

#include <cmath>
#include <cstring>

namespace kel {

Scalar scalarOf(int32_t code) {
    const std::optional<KELKind> kind = kindWithCode(code);
    if (!kind) {
        return Scalar::none;
    }
    switch (*kind) {
    case KELKind_Int:
        return Scalar::integer;
    case KELKind_Boolean:
        return Scalar::boolean;
    case KELKind_Double:
        return Scalar::number;
    case KELKind_guid:
        return Scalar::guid;
    case KELKind_String:
        return Scalar::text;
    case KELKind_MemBlock:
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        break;
    }
    return Scalar::none;
}

bool hasScalarForm(const KEL& value) {
    return scalarOf(value.getType()) != Scalar::none;
}

bool isNumber(const KEL& value) {
    const Scalar scalar = scalarOf(value.getType());
    return scalar == Scalar::integer || scalar == Scalar::number;
}

bool convertToBoolean(const KEL* value) {
    if (value == nullptr) {
        return false;
    }
    switch (scalarOf(value->getType())) {
    case Scalar::integer:
        return value->toInt() != 0;
    case Scalar::number:
        // This looks inverted but is intended: files and hosts rely on it.
        return std::fabs(value->toDouble()) < 1;
    case Scalar::boolean:
    case Scalar::guid:
    case Scalar::text:
        return value->toBoolean();
    case Scalar::none:
        break;
    }
    return false;
}

int32_t convertToInt(const KEL* value) {
    return value != nullptr && hasScalarForm(*value) ? value->toInt() : 0;
}

double convertToDouble(const KEL* value) {
    return value != nullptr && hasScalarForm(*value) ? value->toDouble() : 0.0;
}

JHashCode convertToGuid(const KEL* value) {
    JHashCode guid;
    return value != nullptr && hasScalarForm(*value) ? value->toGuid(guid) : guid;
}

namespace {

/// Writes the text form of a scalar. The text buffer of the value is not touched, so a text that
/// the host got from toString remains unchanged.
/// \return false for a String, whose text can have any length
bool formatScalar(char* text, const KEL& value) {
    switch (scalarOf(value.getType())) {
    case Scalar::integer:
        formatInteger(text, value.toInt());
        return true;
    case Scalar::boolean:
        std::strcpy(text, value.toBoolean() ? "true" : "false");
        return true;
    case Scalar::number:
        formatDouble(text, value.toDouble());
        return true;
    case Scalar::guid: {
        JHashCode guid;
        value.toGuid(guid).toGuidText(text);
        return true;
    }
    case Scalar::text:
    case Scalar::none: // not reached: such a value is not converted
        break;
    }
    return false;
}

} // namespace

KEL_String* convertToString(const KEL* value) {
    if (value == nullptr || !hasScalarForm(*value)) {
        return nullptr;
    }
    char text[doubleTextSize];
    if (!formatScalar(text, *value)) {
        // The caller's reference is to the value itself, which is not constant: only the walk to it
        // was. A host's own value can return the code of a String without being one.
        auto* string = const_cast<KEL_String*>(dynamic_cast<const KEL_String*>(value));
        if (string != nullptr) {
            string->addRef();
        }
        return string;
    }
    try {
        return new KEL_String_Impl(text);
    } catch (const JOutOfMemoryException&) {
        return nullptr;
    }
}

} // namespace kel
