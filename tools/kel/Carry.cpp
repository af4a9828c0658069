#include "Carry.h"

#include "DoubleText.h"
#include "ReservedShapes.h"
#include "Utf8.h"
#include "Values.h"

#include <cmath>
#include <cstring>

namespace kel::tool {

namespace {

/// What people call a value of a kind that only text has a form for.
const char* nameOfTextOnly(const KEL& value) {
    switch (value.getType()) {
    case KELKind_Manager:
        return "a manager";
    case KELKind_IndexList:
        return "an index list";
    case KELKind_MetaKel:
        return "a checked struct";
    case KELKind_MetaKelDescriptor:
        return "a struct descriptor";
    default:
        return "a variable descriptor";
    }
}

const char* obstacleInText(const KEL& value) {
    switch (value.getType()) {
    case KELKind_Double:
        return obstacleOfDouble(value.toDouble(), Format::text);
    case KELKind_String:
        return obstacleOfText(value.toString(), Format::text);
    case KELKind_MemBlock:
        return "a memory block";
    default:
        return nullptr;
    }
}

const char* obstacleInBinary(const KEL& value) {
    if (value.getType() == KELKind_guid) {
        return "a guid";
    }
    return isTextOnly(value) ? nameOfTextOnly(value) : nullptr;
}

const char* obstacleInJson(const KEL& value) {
    switch (value.getType()) {
    case KELKind_Double:
        return obstacleOfDouble(value.toDouble(), Format::json);
    case KELKind_String:
        return obstacleOfText(value.toString(), Format::json);
    case KELKind_Struct: {
        const auto& structure = dynamic_cast<const KEL_Struct&>(value);
        return isReservedShape(structure) ? "a struct that JSON takes for a guid or memory block"
                                          : nullptr;
    }
    default:
        return isTextOnly(value) ? nameOfTextOnly(value) : nullptr;
    }
}

} // namespace

const char* obstacleOfDouble(double value, Format format) {
    if (format == Format::binary) {
        return nullptr;
    }
    if (!std::isfinite(value)) {
        return "a double that is not a finite number";
    }
    if (format == Format::json || isCarriedByText(value)) {
        return nullptr;
    }
    constexpr double firstBeyond32Bits = 2147483648.0;
    return std::fabs(value) < firstBeyond32Bits
               ? "a double that six decimals do not carry"
               : "a double whose integer part does not fit in 32 bits";
}

const char* obstacleOfText(const char* text, Format format) {
    if (format == Format::text && std::strchr(text, '"') != nullptr) {
        return "a string with a double quote";
    }
    if (format == Format::json && !isUtf8(text)) {
        return "a string that is not UTF-8";
    }
    return nullptr;
}

const char* obstacleOf(const KEL& value, Format format) {
    switch (format) {
    case Format::text:
        return obstacleInText(value);
    case Format::binary:
        return obstacleInBinary(value);
    case Format::json:
        break;
    }
    return obstacleInJson(value);
}

const char* obstacleOfName(const char* name, Format format) {
    return format == Format::json && !isUtf8(name) ? "a name that is not UTF-8" : nullptr;
}

const char* obstacleOfNullRoot(Format format) {
    return format == Format::binary ? "null outside a struct" : nullptr;
}

} // namespace kel::tool
