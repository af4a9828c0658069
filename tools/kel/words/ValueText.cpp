#include "words/ValueText.h"

#include "document/Values.h"
#include "path/PathText.h"
#include "words/GuidText.h"
#include "words/Utf8.h"

#include <charconv>
#include <cmath>

namespace kel::tool {

std::string wordsFor(std::string_view text) {
    constexpr size_t mostShown = 60;
    if (text.size() <= mostShown) {
        return '"' + withoutControls(text) + '"';
    }
    size_t end = mostShown;
    while (end > 0 && isContinuation(text[end])) {
        --end;
    }
    return '"' + withoutControls(text.substr(0, end)) + "...\"";
}

std::string wordsFor(double value) {
    constexpr double endOfAllWhole = 9007199254740992.0; // 2^53: from here some are left out
    char digits[32];
    const bool isWhole = std::fabs(value) <= endOfAllWhole && value == std::trunc(value);
    const auto end =
        isWhole ? std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed)
                : std::to_chars(digits, digits + sizeof digits, value);
    return std::string(digits, end.ptr);
}

std::string wordsFor(const KEL* value) {
    if (value == nullptr) {
        return "null";
    }
    const KELKindFacts& facts = kindOf(*value);
    switch (facts.kind) {
    case KELKind_Int:
        return std::to_string(value->toInt());
    case KELKind_Boolean:
        return value->toBoolean() ? "true" : "false";
    case KELKind_Double:
        return wordsFor(value->toDouble());
    case KELKind_guid: {
        JHashCode guid;
        return textOfGuid(value->toGuid(guid));
    }
    case KELKind_String:
        return wordsFor(std::string_view(value->toString()));
    case KELKind_MemBlock:
    case KELKind_Array:
    case KELKind_Struct:
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
    return facts.words;
}

} // namespace kel::tool
