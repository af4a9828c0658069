#include "html/PageWriter.h"

#include "html/PageParts.h"
#include "words/GuidText.h"
#include "words/Utf8.h"
#include "words/ValueText.h"
#include "json/Base64.h"

#include <algorithm>

namespace kel::tool {

namespace {

/// The number of bytes of a memory block that a page shows.
constexpr int64_t shownBytes = 4096;

void putHex(TextBuffer& out, unsigned char byte) {
    constexpr char digits[] = "0123456789abcdef";
    out.put(digits[byte >> 4U]);
    out.put(digits[byte & 0xFU]);
}

/// Puts a character of one byte as it stands in a JSON string in a page. No "<" can begin a tag or
/// a comment, and no control character reaches a terminal.
void putAscii(TextBuffer& out, char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
        out.put('\\');
        out.put(c);
    } else if (byte < 0x20 || byte == 0x7F || c == '<') {
        out.put("\\u00");
        putHex(out, byte);
    } else {
        out.put(c);
    }
}

/// Puts a text whose bytes that are not UTF-8 become "\xHH", and whose backslashes are doubled.
void putForeign(TextBuffer& out, std::string_view text) {
    out.put("[\"");
    while (!text.empty()) {
        const size_t length = utf8SequenceLength(text);
        if (length == 0) {
            out.put("\\\\x");
            putHex(out, static_cast<unsigned char>(text[0]));
        } else if (length > 1) {
            out.put(text.substr(0, length));
        } else {
            putAscii(out, text[0]);
            if (text[0] == '\\') {
                putAscii(out, text[0]);
            }
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    out.put("\"]");
}

void putText(TextBuffer& out, std::string_view text) {
    if (!isUtf8(text)) {
        putForeign(out, text);
        return;
    }
    out.put('"');
    for (const char c : text) {
        putAscii(out, c);
    }
    out.put('"');
}

void putNumber(TextBuffer& out, int64_t number) {
    out.put(std::to_string(number));
}

void putSize(TextBuffer& out, size_t number) {
    out.put(std::to_string(number));
}

/// Puts a member of the page's object: an array of what put(element) puts.
template <class List, class Put>
void putColumn(TextBuffer& out, const char* name, const List& list, const Put& put) {
    out.put(",\n\"");
    out.put(name);
    out.put("\":[");
    bool isFirst = true;
    for (const auto& element : list) {
        if (!isFirst) {
            out.put(',');
        }
        isFirst = false;
        put(element);
    }
    out.put(']');
}

/// Puts the size of a memory block and its first bytes.
void putMemBlock(TextBuffer& out, const KEL& value) {
    // Reading can load the bytes, so a constant block has no operation for it.
    auto& block = dynamic_cast<KEL_MemBlock&>(const_cast<KEL&>(value));
    const int64_t size = block.getSize();
    std::vector<uint8_t> bytes(static_cast<size_t>(std::min(size, shownBytes)));
    block.read(0, bytes.data(), static_cast<int32_t>(bytes.size()));
    out.put('[');
    putNumber(out, size);
    out.put(",\"");
    out.put(toBase64(bytes));
    out.put("\"]");
}

void putContents(TextBuffer& out, const KEL& value, size_t count) {
    switch (kindOf(value).kind) {
    case KELKind_Int:
        putNumber(out, value.toInt());
        break;
    case KELKind_Boolean:
        out.put(value.toBoolean() ? "true" : "false");
        break;
    case KELKind_Double:
    case KELKind_guid:
        putText(out, wordsFor(&value));
        break;
    case KELKind_MemBlock:
        putMemBlock(out, value);
        break;
    case KELKind_String:
        putText(out, value.toString());
        break;
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
        putSize(out, count);
        break;
    }
}

/// Puts the words for all kinds, without their articles.
void putKindWords(TextBuffer& out) {
    out.put("\"kindWords\":{\"0\":\"null\"");
    for (const KELKindFacts& facts : KELKinds) {
        out.put(",\"");
        putNumber(out, facts.kind);
        out.put("\":");
        const std::string_view words = facts.words;
        putText(out, words.substr(words.find(' ') + 1));
    }
    out.put('}');
}

void putIdentities(TextBuffer& out, const PageData& data, const GivenIdentities& given) {
    std::vector<size_t> identified;
    out.put(",\n\"identities\":\"");
    for (size_t number = 1; number < data.values().size(); ++number) {
        const KEL& value = *data.values()[number];
        if (!given.contains(value)) {
            continue;
        }
        identified.push_back(number);
        std::string digits = textOfGuid(identityOf(value));
        std::erase(digits, '-');
        out.put(digits);
    }
    out.put('"');
    if (identified.size() + 1 == data.values().size()) {
        out.put(",\n\"identified\":null");
    } else {
        putColumn(out, "identified", identified, [&](size_t number) { putSize(out, number); });
    }
}

void putData(TextBuffer& out, const PageData& data, const GivenIdentities& given,
             const PageSubject& subject) {
    out.put("{\"file\":");
    putText(out, subject.file);
    out.put(",\"format\":\"");
    out.put(nameOf(subject.format));
    out.put("\",\n");
    putKindWords(out);
    putColumn(out, "kinds", data.values(),
              [&](const KEL* value) { putNumber(out, value != nullptr ? value->getType() : 0); });
    size_t number = 0;
    putColumn(out, "contents", data.values(), [&](const KEL* value) {
        const size_t count = data.counts()[number++];
        if (value != nullptr) {
            putContents(out, *value, count);
        } else {
            putSize(out, count);
        }
    });
    putColumn(out, "values", data.places(),
              [&](const PageData::Place& place) { putSize(out, place.value); });
    putColumn(out, "names", data.places(),
              [&](const PageData::Place& place) { putSize(out, place.name); });
    putColumn(out, "nameTexts", data.names(), [&](std::string_view name) { putText(out, name); });
    putColumn(out, "violations", data.violations(), [&](const PageData::Violation& violation) {
        out.put('[');
        putSize(out, violation.place);
        out.put(',');
        putText(out, violation.words);
        out.put(']');
    });
    putIdentities(out, data, given);
    out.put('}');
}

} // namespace

void writePage(const PageData& data, const GivenIdentities& given, const PageSubject& subject,
               TextBuffer& out) {
    out.put(pageBeforeData());
    putData(out, data, given, subject);
    out.put(pageAfterData());
}

} // namespace kel::tool
