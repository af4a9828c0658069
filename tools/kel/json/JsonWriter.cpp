#include "json/JsonWriter.h"

#include "document/OutputBytes.h"
#include "words/GuidText.h"
#include "words/Utf8.h"
#include "json/Base64.h"
#include "json/JsonText.h"
#include "json/ReservedShapes.h"

#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace kel::tool {

namespace {

// What the characters of a text are to JSON strings.
constexpr unsigned isEscaped = 1;  ///< strings cannot hold it as it is
constexpr unsigned isNotAscii = 2; ///< it is a part of a sequence, or not UTF-8 at all

/// The marks of each character.
constexpr std::array<unsigned char, 256> characterMarks = [] {
    std::array<unsigned char, 256> marks{};
    for (unsigned c = 0; c < marks.size(); ++c) {
        marks[c] = c >= 0x80 ? isNotAscii : c < 0x20 || c == '"' || c == '\\' ? isEscaped : 0;
    }
    return marks;
}();

/// Returns the marks that any character of the text has.
unsigned marksOf(std::string_view text) {
    unsigned marks = 0;
    for (const char c : text) {
        marks |= characterMarks[static_cast<unsigned char>(c)];
    }
    return marks;
}

std::vector<uint8_t> bytesOf(const KEL& value) {
    // Reading can load the bytes, so a constant block has no operation for it.
    auto& block = dynamic_cast<KEL_MemBlock&>(const_cast<KEL&>(value));
    std::vector<uint8_t> bytes(static_cast<size_t>(block.getSize()));
    block.read(0, bytes.data(), block.getSize());
    return bytes;
}

} // namespace

JsonWriter::JsonWriter(TextBuffer& out, const JsonLayout& layout, size_t roots)
    : out_(out), isIndented_(layout.indents(roots)), indentWidth_(layout.width),
      longestLine_('\n' + std::string(JsonLayout::levels * layout.width, layout.blank)) {}

void JsonWriter::write(KEL* root) {
    TreeCursor cursor(root);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        writeEvent(cursor, event);
    }
}

void JsonWriter::writeContents(KEL& container) {
    TreeCursor cursor(&container);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        if (cursor.depth() > 0) {
            writeEvent(cursor, event);
        }
    }
}

void JsonWriter::writeEvent(const TreeCursor& cursor, TreeCursor::Event event) {
    const char* name = event == TreeCursor::Event::leave ? nullptr : cursor.name();
    switch (event) {
    case TreeCursor::Event::enter:
        open(cursor.value()->getType() == KELKind_Struct, name);
        break;
    case TreeCursor::Event::leave:
        close();
        break;
    case TreeCursor::Event::scalar:
        beginValue(name);
        writeScalar(*cursor.value());
        endValue();
        break;
    case TreeCursor::Event::null:
    // not reached: the loop ends before it
    case TreeCursor::Event::done:
        beginValue(name);
        out_.put("null");
        endValue();
        break;
    }
}

void JsonWriter::open(bool isStruct, const char* name) {
    beginValue(name);
    out_.put(isStruct ? '{' : '[');
    open_.push_back(isStruct);
    isEmpty_ = true;
}

void JsonWriter::close() {
    const bool isStruct = open_.back();
    open_.pop_back();
    if (!isEmpty_ && open_.size() < JsonLayout::levels) {
        beginLine(open_.size());
    }
    out_.put(isStruct ? '}' : ']');
    endValue();
}

void JsonWriter::beginValue(const char* name) {
    if (open_.empty()) {
        return;
    }
    if (!isEmpty_) {
        out_.put(',');
    }
    beginLine(open_.size());
    if (name != nullptr) {
        isExact_ = isExact_ && reservedName(name) == nullptr;
        writeString(name);
        out_.put(isIndented_ ? ": " : ":");
    }
}

void JsonWriter::endValue() {
    isEmpty_ = false;
    if (open_.empty()) {
        out_.put('\n');
    }
}

void JsonWriter::beginLine(size_t depth) {
    if (isIndented_ && depth <= JsonLayout::levels) {
        out_.put(std::string_view(longestLine_).substr(0, 1 + depth * indentWidth_));
    }
}

void JsonWriter::writeScalar(const KEL& value) {
    switch (static_cast<KELKind>(value.getType())) { // a kind that the cursor knows
    case KELKind_Int: {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof digits, value.toInt());
        out_.put(std::string_view(digits, end.ptr));
        break;
    }
    case KELKind_Boolean:
        out_.put(value.toBoolean() ? "true" : "false");
        break;
    case KELKind_Double:
        writeDouble(value.toDouble());
        break;
    case KELKind_guid: {
        JHashCode guid;
        writeShape(guidShape, textOfGuid(value.toGuid(guid)));
        break;
    }
    case KELKind_MemBlock:
        writeShape(memBlockShape, toBase64(bytesOf(value)));
        break;
    case KELKind_String:
        writeString(value.toString());
        break;
    // not reached: these are containers, or were replaced
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        out_.put("null");
        break;
    }
}

void JsonWriter::writeDouble(double value) {
    isExact_ = isExact_ && std::isfinite(value);
    out_.put(JsonDouble(value).text());
}

void JsonWriter::writeString(std::string_view text) {
    const unsigned marks = marksOf(text);
    const bool isSound = (marks & isNotAscii) == 0 || isUtf8(text);
    isExact_ = isExact_ && isSound;
    if (isSound && (marks & isEscaped) == 0) {
        out_.putQuoted(text);
    } else {
        using nlohmann::json;
        out_.put(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
    }
}

void JsonWriter::writeShape(const char* name, std::string_view text) {
    out_.put(isIndented_ ? "{ \"" : "{\"");
    out_.put(name);
    out_.put(isIndented_ ? "\": \"" : "\":\"");
    out_.put(text);
    out_.put(isIndented_ ? "\" }" : "\"}");
}

void writeJson(const Document& document, const JsonLayout& layout, std::FILE* file) {
    TextBuffer buffer([file](std::string_view text) { writeBytes(text, file); });
    JsonWriter writer(buffer, layout, document.roots().size());
    for (const Value& root : document.roots()) {
        writer.write(root.get());
    }
    buffer.flush();
}

} // namespace kel::tool
