#include "ValueText.h"

#include "GuidText.h"
#include "PathText.h"
#include "Utf8.h"

#include <charconv>
#include <kel/KELKind.h>

namespace kel::tool {

namespace {

std::string quoted(std::string_view text) {
    constexpr size_t longest = 60;
    if (text.size() <= longest) {
        return '"' + withoutControls(text) + '"';
    }
    size_t end = longest;
    while (end > 0 && isContinuation(text[end])) {
        --end;
    }
    return '"' + withoutControls(text.substr(0, end)) + "...\"";
}

} // namespace

std::string wordsFor(double value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    return std::string(digits, end.ptr);
}

std::string wordsFor(const KEL* value) {
    if (value == nullptr) {
        return "null";
    }
    switch (value->getType()) {
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
    case KELKind_MemBlock:
        return "a memory block";
    case KELKind_String:
        return quoted(value->toString());
    case KELKind_Array:
        return "an array";
    case KELKind_Struct:
        return "a struct";
    case KELKind_Manager:
        return "a manager";
    case KELKind_IndexList:
        return "an index list";
    case KELKind_MetaKel:
        return "a checked struct";
    case KELKind_MetaKelDescriptor:
        return "a struct descriptor";
    case KELKind_MetaKelVarDescriptor:
        return "a variable descriptor";
    default:
        return "a selector";
    }
}

} // namespace kel::tool
