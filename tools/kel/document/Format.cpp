#include "document/Format.h"

#include "words/Characters.h"

namespace kel::tool {

namespace {

constexpr std::string_view binaryMagic("KEL\0", 4);

bool isLayoutControl(char c) {
    return c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 && !isLayoutControl(c);
}
bool isInWord(char c) {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.';
}

/// Returns the word or number that starts at begin.
std::string_view wordAt(std::string_view content, size_t begin) {
    size_t end = begin;
    while (end < content.size() &&
           (isInWord(content[end]) || content[end] == '-' || content[end] == '+')) {
        ++end;
    }
    return content.substr(begin, end - begin);
}

/// Returns the place after the closing quote, or nothing if a quoted text holds a line end, which
/// JSON forbids. If the quote is still open at the end of the content, returns the end.
std::optional<size_t> behindQuoted(std::string_view content, size_t openingQuote) {
    size_t at = openingQuote + 1;
    while (at < content.size() && content[at] != '"') {
        if (static_cast<unsigned char>(content[at]) < 0x20) {
            return std::nullopt;
        }
        at += content[at] == '\\' ? 2 : 1;
    }
    return at < content.size() ? at + 1 : content.size();
}

} // namespace

const char* nameOf(Format format) {
    switch (format) {
    case Format::text:
        return "text";
    case Format::binary:
        return "binary";
    case Format::json:
        break;
    }
    return "json";
}

std::optional<Format> formatOfName(std::string_view fileName) {
    if (fileName.ends_with(".kel")) {
        return Format::text;
    }
    if (fileName.ends_with(".kelb")) {
        return Format::binary;
    }
    if (fileName.ends_with(".json")) {
        return Format::json;
    }
    return std::nullopt;
}

std::optional<Format> formatOfContent(const InputBytes& bytes) {
    const std::string_view content = bytes;
    if (content.starts_with(binaryMagic)) {
        return Format::binary;
    }
    if (binaryMagic.starts_with(content)) {
        return std::nullopt; // perhaps a binary file that was cut short
    }
    Trail trail(bytes);
    size_t at = 0;
    while (at < content.size()) {
        trail.reach(content.data() + at);
        const char c = content[at];
        if (c == ':' || c == ',') {
            return Format::json;
        }
        if (c == '"') {
            const std::optional<size_t> behind = behindQuoted(content, at);
            if (!behind) {
                return Format::text;
            }
            at = *behind;
        } else if (isLetter(c)) {
            const std::string_view word = wordAt(content, at);
            at += word.size();
            const bool isSound = at == content.size() || !isControl(content[at]);
            if (isSound && word != "true" && word != "false" && word != "null") {
                return Format::text;
            }
        } else if (isDigit(c)) {
            at += wordAt(content, at).size();
        } else if (c == '=' || c == '#' || c == '/' || c == '(' || c == '<' || c == '@' ||
                   c == '_') {
            return Format::text;
        } else if (isControl(c)) {
            return std::nullopt;
        } else {
            ++at;
        }
    }
    return std::nullopt;
}

Format recogniseFormat(const InputBytes& content, std::string_view fileName) {
    if (const std::optional<Format> told = formatOfContent(content)) {
        return *told;
    }
    return formatOfName(fileName).value_or(Format::text);
}

} // namespace kel::tool
