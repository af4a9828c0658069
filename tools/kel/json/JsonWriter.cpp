#include "json/JsonWriter.h"

#include "Failure.h"
#include "GuidText.h"
#include "TreeCursor.h"
#include "json/Base64.h"
#include "json/ReservedShapes.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

namespace kel::tool {

namespace {

/// Deeper levels are written on one line. Otherwise a deep tree would be mostly indentation.
constexpr size_t indentedLevels = 40;
constexpr size_t indentWidth = 4;

/// Collects the bytes of a file and writes them in large pieces.
class Sink {
public:
    explicit Sink(std::FILE* file) : file_(file) {}

    void put(char c) { buffer_ += c; }
    void put(std::string_view text) {
        buffer_ += text;
        if (buffer_.size() >= pieceSize) {
            flush();
        }
    }
    void putSpaces(size_t count) { buffer_.append(count, ' '); }

    void flush() {
        errno = 0;
        if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) {
            throw Failure{Trouble::unwritten, std::strerror(errno)};
        }
        buffer_.clear();
    }

private:
    static constexpr size_t pieceSize = 64 * 1024;

    std::FILE* file_;
    std::string buffer_;
};

/// Writes one root value.
class JsonWriter {
public:
    JsonWriter(Sink& sink, bool isIndented) : sink_(sink), isIndented_(isIndented) {}

    void write(KEL* root);

private:
    void beginValue(const TreeCursor& cursor);
    void beginLine(size_t depth);
    void writeScalar(const KEL& value);
    void writeDouble(double value);
    void writeString(std::string_view text);
    void writeShape(const char* name, std::string_view text);

    Sink& sink_;
    bool isIndented_;
};

bool isPlain(char c) {
    return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\' &&
           static_cast<unsigned char>(c) < 0x7F;
}

std::vector<uint8_t> bytesOf(const KEL& value) {
    // Reading can load the bytes, so a constant block has no operation for it.
    auto& block = dynamic_cast<KEL_MemBlock&>(const_cast<KEL&>(value));
    std::vector<uint8_t> bytes(static_cast<size_t>(block.getSize()));
    block.read(0, bytes.data(), block.getSize());
    return bytes;
}

void JsonWriter::write(KEL* root) {
    TreeCursor cursor(root);
    bool isEmpty = false; // whether the innermost container has no value yet
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        const KEL* value = cursor.value();
        if (event == TreeCursor::Event::leave) {
            if (!isEmpty && cursor.depth() < indentedLevels) {
                beginLine(cursor.depth());
            }
            sink_.put(value->getType() == KELKind_Struct ? '}' : ']');
            isEmpty = false;
            continue;
        }
        beginValue(cursor);
        isEmpty = event == TreeCursor::Event::enter;
        if (event == TreeCursor::Event::null) {
            sink_.put("null");
        } else if (event == TreeCursor::Event::scalar) {
            writeScalar(*value);
        } else {
            sink_.put(value->getType() == KELKind_Struct ? '{' : '[');
        }
    }
    sink_.put("\n");
}

void JsonWriter::beginValue(const TreeCursor& cursor) {
    if (cursor.depth() == 0) {
        return;
    }
    if (!cursor.isFirst()) {
        sink_.put(',');
    }
    beginLine(cursor.depth());
    if (const char* name = cursor.name()) {
        writeString(name);
        sink_.put(isIndented_ ? ": " : ":");
    }
}

void JsonWriter::beginLine(size_t depth) {
    if (isIndented_ && depth <= indentedLevels) {
        sink_.put('\n');
        sink_.putSpaces(depth * indentWidth);
    }
}

void JsonWriter::writeScalar(const KEL& value) {
    switch (kindOf(value).kind) {
    case KELKind_Int: {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof digits, value.toInt());
        sink_.put(std::string_view(digits, end.ptr));
        break;
    }
    case KELKind_Boolean:
        sink_.put(value.toBoolean() ? "true" : "false");
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
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        sink_.put("null"); // never reached: these are containers or were replaced
        break;
    }
}

void JsonWriter::writeDouble(double value) {
    if (!std::isfinite(value)) {
        sink_.put("null");
        return;
    }
    constexpr double plainDigits = 1e15; // smaller integers are easier to read without exponent
    char digits[32];
    const bool isWhole = std::trunc(value) == value && std::fabs(value) < plainDigits;
    const auto end =
        isWhole ? std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed)
                : std::to_chars(digits, digits + sizeof digits, value);
    const std::string_view text(digits, end.ptr);
    sink_.put(text);
    if (text.find_first_of(".e") == std::string_view::npos) {
        sink_.put(".0"); // without it the number would be read as an Int
    }
}

void JsonWriter::writeString(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        sink_.put('"');
        sink_.put(text);
        sink_.put('"');
    } else {
        using nlohmann::json;
        sink_.put(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
    }
}

void JsonWriter::writeShape(const char* name, std::string_view text) {
    sink_.put(isIndented_ ? "{ \"" : "{\"");
    sink_.put(name);
    sink_.put(isIndented_ ? "\": \"" : "\":\"");
    sink_.put(text);
    sink_.put(isIndented_ ? "\" }" : "\"}");
}

} // namespace

void writeJson(const Document& document, std::FILE* file) {
    Sink sink(file);
    JsonWriter writer(sink, document.roots().size() == 1);
    for (const Value& root : document.roots()) {
        writer.write(root.get());
    }
    sink.flush();
}

} // namespace kel::tool
