#include "findings/FindingText.h"

#include "path/PathText.h"
#include "words/Utf8.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace kel::tool {

namespace {

/// Takes a number, which must follow the lead and end before the tail, from the beginning of the
/// text. \return the number, or 0 if there is another text
uint64_t takeNumber(std::string_view& text, std::string_view lead, std::string_view tail) {
    if (!text.starts_with(lead)) {
        return 0;
    }
    const char* end = text.data() + text.size();
    uint64_t number = 0;
    const auto last = std::from_chars(text.data() + lead.size(), end, number);
    const std::string_view rest(last.ptr, static_cast<size_t>(end - last.ptr));
    if (last.ec != std::errc() || !rest.starts_with(tail)) {
        return 0;
    }
    text = rest;
    return number;
}

/// Returns the text as a JSON string. Bytes that are not valid UTF-8 become U+FFFD. The parser's
/// own values are not used here: they do not survive that memory runs out.
std::string quotedForJson(std::string_view text) {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    std::string quoted = "\"";
    while (!text.empty()) {
        const size_t length = utf8SequenceLength(text);
        const auto byte = static_cast<unsigned char>(text[0]);
        if (length == 0) {
            quoted += "\xEF\xBF\xBD";
        } else if (byte < 0x20) {
            quoted += "\\u00";
            quoted += hexDigits[byte / 16U];
            quoted += hexDigits[byte % 16U];
        } else {
            quoted.append(byte == '"' || byte == '\\' ? 1 : 0, '\\').append(text, 0, length);
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return quoted + '"';
}

/// Returns the path as programs read it, where a root value is ".".
std::string pathForPrograms(const std::string& path) {
    return path.ends_with(PathText::ofRoot)
               ? path.substr(0, path.size() - PathText::ofRoot.size()) + '.'
               : path;
}

} // namespace

std::string lineFor(const Finding& finding, const std::string& file) {
    std::string text = file;
    if (finding.line != 0) {
        text += ':' + std::to_string(finding.line) + ':' + std::to_string(finding.column);
    }
    if (!finding.path.empty()) {
        text += ": " + finding.path;
    }
    return text + ": " + finding.message + finding.excerpt;
}

std::string jsonFor(const Finding& finding, const std::string& file) {
    std::string text = "{\"file\": " + quotedForJson(file);
    if (finding.line != 0) {
        text += ", \"line\": " + std::to_string(finding.line);
    }
    if (finding.column != 0) {
        text += ", \"column\": " + std::to_string(finding.column);
    }
    if (finding.offset) {
        text += ", \"offset\": " + std::to_string(*finding.offset);
    }
    if (!finding.path.empty()) {
        text += ", \"path\": " + quotedForJson(pathForPrograms(finding.path));
    }
    text += ", \"severity\": ";
    text += finding.severity == Severity::error ? "\"error\"" : "\"warning\"";
    return text + ", \"message\": " + quotedForJson(finding.message) + '}';
}

Finding findingOf(const Failure& failure, const std::string& file) {
    std::string_view text = failure.message;
    Finding finding;
    if (text.starts_with(file)) {
        text.remove_prefix(file.size());
        std::string_view offset = text;
        if (uint64_t number = takeNumber(offset, ": offset ", ": "); offset != text) {
            finding.offset = static_cast<size_t>(number);
            text = offset;
        } else {
            finding.line = takeNumber(text, ":", ":");
            finding.column = finding.line != 0 ? takeNumber(text, ":", ": ") : 0;
        }
        text.remove_prefix(text.starts_with(": ") ? 2 : 0);
    }
    finding.message = text.substr(0, text.find('\n'));
    return finding;
}

} // namespace kel::tool
