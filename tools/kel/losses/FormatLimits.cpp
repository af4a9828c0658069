#include "losses/FormatLimits.h"

#include "document/Values.h"
#include "words/DoubleText.h"
#include "words/Utf8.h"
#include "json/ReservedShapes.h"

#include <cmath>
#include <cstring>

namespace kel::tool {

namespace {

bool hasForm(const KELKindFacts& facts, Format format) {
    switch (format) {
    case Format::text:
        return facts.hasTextForm;
    case Format::binary:
        return facts.hasBinaryForm;
    case Format::json:
        break;
    }
    return facts.hasJsonForm;
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
               ? "a double that six decimals cannot hold"
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
    const KELKindFacts& facts = kindOf(value);
    if (!hasForm(facts, format)) {
        return facts.words;
    }
    switch (facts.kind) {
    case KELKind_Double:
        return obstacleOfDouble(value.toDouble(), format);
    case KELKind_String:
        return obstacleOfText(value.toString(), format);
    case KELKind_Struct:
        return format == Format::json && isReservedShape(dynamic_cast<const KEL_Struct&>(value))
                   ? "a struct that looks like a guid or memory block in JSON"
                   : nullptr;
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_guid:
    case KELKind_MemBlock:
    case KELKind_Array:
    case KELKind_Manager:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
    // not reached: no file can hold a selector
    case KELKind_Selector:
    case KELKind_MultiSelector:
        break;
    }
    return nullptr;
}

const char* obstacleOfName(const char* name, Format format) {
    return format == Format::json && !isUtf8(name) ? "a name that is not UTF-8" : nullptr;
}

const char* obstacleOfNullRoot(Format format) {
    return format == Format::binary ? "null outside a struct" : nullptr;
}

} // namespace kel::tool
