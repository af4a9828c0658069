#include "losses/OutputSize.h"

#include "document/Values.h"
#include "words/Utf8.h"
#include "json/JsonText.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace kel::tool {

namespace {

constexpr uint64_t ofWord = 5; // false

template <class Number> uint64_t digitsOf(Number number) {
    char digits[24];
    return static_cast<uint64_t>(std::to_chars(digits, digits + sizeof digits, number).ptr -
                                 digits);
}

/// Returns the size of a double with six decimals.
uint64_t sizeOfTextDouble(double value) {
    constexpr uint64_t ofSignAndDecimals = 8;
    constexpr double largestCounted = 1e15;
    const double size = std::fabs(value);
    if (!std::isfinite(value)) {
        return ofWord;
    }
    if (size < largestCounted) {
        return ofSignAndDecimals + digitsOf(static_cast<uint64_t>(size) + 1); // it can be rounded
    }
    constexpr double digitsPerBit = 0.30103;
    return ofSignAndDecimals + static_cast<uint64_t>(std::ilogb(size) * digitsPerBit) + 2;
}

uint64_t sizeOfBlock(const KEL& block, Format format) {
    constexpr uint64_t ofTextForm = 32; // void[SIZE] : 0xADDRESS
    if (format == Format::text) {
        return ofTextForm;
    }
    constexpr uint64_t ofShape = 19; // { "$memblock": "" }
    const auto size = static_cast<uint64_t>(dynamic_cast<const KEL_MemBlock&>(block).getSize());
    return ofShape + (size + 2) / 3 * 4;
}

} // namespace

uint64_t sizeOfScalar(const KEL* scalar, Format format) {
    if (scalar == nullptr) {
        return ofWord;
    }
    constexpr uint64_t ofGuidShape = 15; // { "$guid": "" }
    const bool isJson = format == Format::json;
    switch (kindOf(*scalar).kind) {
    case KELKind_String:
        return isJson ? sizeOfJsonString(scalar->toString()) : std::strlen(scalar->toString()) + 2;
    case KELKind_MemBlock:
        return sizeOfBlock(*scalar, format);
    case KELKind_Int:
        return digitsOf(scalar->toInt());
    case KELKind_Double:
        return isJson ? JsonDouble(scalar->toDouble()).text().size()
                      : sizeOfTextDouble(scalar->toDouble());
    case KELKind_guid:
        return JHashCode::guidTextLength + (isJson ? ofGuidShape : 0);
    case KELKind_Boolean:
        break;
    // not reached: only scalars come here
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
    return ofWord;
}

uint64_t sizeOfName(const char* name, Format format) {
    constexpr uint64_t ofQuotesAndSign = 5; // "" =
    constexpr uint64_t ofColon = 2;
    return format == Format::json ? sizeOfJsonString(name) + ofColon
                                  : std::strlen(name) + ofQuotesAndSign;
}

uint64_t sizeOfContainer(const KEL& container, Format format) {
    constexpr uint64_t ofBrackets = 4;
    if (format != Format::text) {
        return 3; // brackets and a comma; the layout decides about line ends
    }
    switch (kindOf(container).kind) {
    case KELKind_IndexList:
        return 40; // of two arrays and two comments
    case KELKind_MetaKel:
    case KELKind_MetaKelVarDescriptor:
        return ofBrackets + 12; // with @type and an empty line
    case KELKind_MetaKelDescriptor:
        return ofBrackets + 12 + 14 + JHashCode::guidTextLength; // with @hashCode
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
        break;
    // not reached: only containers come here
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
    return ofBrackets;
}

uint64_t sizeAroundElement(const KEL& container, Format format) {
    constexpr uint64_t ofSign = 3; // an equals sign between blanks
    const bool hasIdentity = container.getType() == KELKind_Manager && format == Format::text;
    return hasIdentity ? JHashCode::guidTextLength + ofSign : 0;
}

} // namespace kel::tool
