#include "values/Conversions.h"

#include "runtime/Text.h"
#include "values/KEL_String_Impl.h"

#include <cfloat>
#include <cmath>
#include <cstring>

namespace kel {

bool hasScalarForm(const KEL& value) {
    switch (value.getType()) {
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
    case KELKind_guid:
    case KELKind_String:
        return true;
    default:
        return false;
    }
}

bool convertToBoolean(const KEL* value) {
    if (value == nullptr || !hasScalarForm(*value)) {
        return false;
    }
    switch (value->getType()) {
    case KELKind_Int:
        return value->toInt() != 0;
    case KELKind_Double:
        // Looks inverted and is meant: files and hosts rely on it.
        return std::fabs(std::trunc(value->toDouble())) <= double{FLT_MIN};
    default:
        return value->toBoolean();
    }
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

/// The text form of a scalar that is no String, without touching the text buffer of the value: a
/// text that the host got from toString stays as it is.
void formatScalar(char* text, const KEL& value) {
    JHashCode guid;
    switch (value.getType()) {
    case KELKind_Int:
        formatInteger(text, value.toInt());
        break;
    case KELKind_Boolean:
        std::strcpy(text, value.toBoolean() ? "true" : "false");
        break;
    case KELKind_Double:
        formatDouble(text, value.toDouble());
        break;
    default:
        value.toGuid(guid).toGuidText(text);
        break;
    }
}

} // namespace

KEL_String* convertToString(const KEL* value) {
    if (value == nullptr || !hasScalarForm(*value)) {
        return nullptr;
    }
    if (value->getType() == KELKind_String) {
        // The caller's reference is to the value itself, which is not constant: only the walk to
        // it was.
        auto* string = const_cast<KEL_String*>(dynamic_cast<const KEL_String*>(value));
        string->addRef();
        return string;
    }
    char text[doubleTextSize];
    formatScalar(text, *value);
    try {
        return new KEL_String_Impl(text);
    } catch (const std::bad_alloc&) {
        return nullptr;
    } catch (const JOutOfMemoryException&) {
        return nullptr;
    }
}

} // namespace kel
