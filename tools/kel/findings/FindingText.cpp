#include "findings/FindingText.h"

#include "path/PathText.h"
#include "words/Utf8.h"

#include <algorithm>
#include <string_view>

namespace kel::tool {

namespace {

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
    if (finding.line == 0 && finding.offset) {
        text += ": offset " + std::to_string(*finding.offset);
    }
    if (!finding.path.empty()) {
        text += ": " + finding.path;
    }
    const std::string advice = finding.hint.empty() ? "" : "; " + finding.hint;
    return text + ": " + finding.message + advice + finding.excerpt;
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
    text += ", \"message\": " + quotedForJson(finding.message);
    if (!finding.hint.empty()) {
        text += ", \"hint\": " + quotedForJson(finding.hint);
    }
    return text + '}';
}

Finding findingOf(const Failure& failure, const std::string& file) {
    Finding finding;
    if (const Mistake* mistake = failure.mistake.get()) {
        finding.path = mistake->path;
        finding.message = mistake->reason;
        finding.hint = mistake->hint;
        finding.offset = mistake->offset;
        finding.line = mistake->line;
        finding.column = mistake->column;
        return finding;
    }
    std::string_view text = failure.message;
    const std::string lead = file + ": ";
    text.remove_prefix(text.starts_with(lead) ? lead.size() : 0);
    finding.message = text.substr(0, text.find('\n'));
    return finding;
}

} // namespace kel::tool
