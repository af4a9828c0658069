#include "explain/TextHints.h"

#include "explain/ShownText.h"
#include "explain/TextScanner.h"
#include "words/Utf8.h"

#include <algorithm>

namespace kel::tool {

namespace {

bool startsWith(std::string_view content, size_t at, std::string_view lead) {
    return content.substr(std::min(at, content.size())).starts_with(lead);
}

bool isExponent(std::string_view run) {
    const size_t e = run.find_first_of("eE");
    if (e == std::string_view::npos) {
        return false;
    }
    const size_t digits = run.find_first_not_of("+-", e + 1);
    return run.find_first_not_of("-.0123456789") == e && digits != std::string_view::npos &&
           run.find_first_not_of("0123456789", digits) == std::string_view::npos;
}

} // namespace

size_t endOfRun(std::string_view content, size_t at) {
    return std::min(content.find_first_of(" \t\r\n\f\"'[]{}()<>,=;", at), content.size());
}

std::string_view phraseAt(std::string_view content, size_t at) {
    const size_t end = std::min(content.find_first_of("\r\n\f[]{}()<>=,;\"#", at), content.size());
    const bool isBeforeName = end < content.size() && content[end] == '=';
    const std::string_view phrase =
        content.substr(at, (isBeforeName ? endOfRun(content, at) : end) - at);
    return phrase.substr(0, phrase.find_last_not_of(" \t") + 1);
}

size_t lengthOfFound(std::string_view content, size_t at) {
    // not reached: the callers deal with the end of the input themselves
    if (at >= content.size()) {
        return 0;
    }
    const char c = content[at];
    if (c == '"') {
        const size_t end = content.find_first_of("\"\n", at + 1);
        const bool isClosed = end != std::string_view::npos && content[end] == '"';
        return isClosed ? end + 1 - at : 1;
    }
    if (isInKey(c) || ((c == '-' || c == '.' || c == '#' || c == '+') && at + 1 < content.size() &&
                       isInKey(content[at + 1]))) {
        return std::max<size_t>(endOfRun(content, at) - at, 1);
    }
    return firstCharacter(content.substr(at)).length;
}

std::string foundInText(std::string_view content, size_t at) {
    // not reached: the callers deal with the end of the input themselves
    if (at >= content.size()) {
        return "the end of the input";
    }
    if (content[at] == '"') {
        return "a quoted word";
    }
    if (content[at] == '\r') {
        return "a carriage return";
    }
    return quoted(content.substr(at, lengthOfFound(content, at)));
}

std::string hintForStranger(std::string_view content, size_t at) {
    // not reached: the callers deal with the end of the input themselves
    if (at >= content.size()) {
        return "";
    }
    switch (content[at]) {
    case ',':
        return "text has no commas between values: remove it";
    case ':':
        return "did you mean \"=\"?";
    case '\'':
    case '`':
        return "quoted words stand in double quotes";
    case '+':
        return at + 1 < content.size() && isDigit(content[at + 1])
                   ? "numbers have no plus sign: remove it"
                   : "";
    case ';':
        return "text needs no mark at the end of a value: remove it";
    case '\\':
        return "text has no escapes and no continued lines";
    case '/':
    case '!':
    case '%':
        return "a comment begins with \"//\"";
    case '$':
    case '&':
    case '*':
        return "the value of a definition is written by its name alone";
    case '\r':
        return "lines end with LF, or with CR and LF";
    case '#':
        return startsWith(content, at, "#define")
                   ? "a definition stands before a value, never in place of a name"
                   : "a comment begins with \"//\", a definition with \"#define\"";
    default:
        break;
    }
    if (startsWith(content, at, "\xE2\x80\x9C") || startsWith(content, at, "\xE2\x80\x9D") ||
        startsWith(content, at, "\xE2\x80\x9E") || startsWith(content, at, "\xC2\xAB")) {
        return "quoted words stand in straight double quotes: \"";
    }
    if (startsWith(content, at, "\xEF\xBB\xBF")) {
        return "save the file without a byte order mark";
    }
    if (startsWith(content, at, "\xC2\xA0")) {
        return "this is a non-breaking space: replace it with a space";
    }
    if (static_cast<unsigned char>(content[at]) < 0x80) {
        return "";
    }
    return utf8SequenceLength(content.substr(at)) == 0
               ? "this byte is not valid UTF-8, and text outside quotes is ASCII"
               : "words with letters beyond ASCII stand in double quotes";
}

bool looksLikeHashCode(std::string_view run) {
    constexpr size_t fewestDigits = 20;
    const auto isPart = [](char c) { return isHexDigit(c) || c == '-'; };
    return hexDigitsIn(run) >= fewestDigits && std::count(run.begin(), run.end(), '-') >= 2 &&
           std::count_if(run.begin(), run.end(), isPart) + 2 >=
               static_cast<std::ptrdiff_t>(run.size());
}

size_t hexDigitsIn(std::string_view run) {
    return static_cast<size_t>(std::count_if(run.begin(), run.end(), isHexDigit));
}

std::string hintForNumber(std::string_view run) {
    if (run.find_first_of("0123456789") == std::string_view::npos) {
        return "";
    }
    if (run.starts_with("0x") || run.starts_with("0X")) {
        return "hexadecimal numbers are written as 0x1F, with a small x";
    }
    if (isExponent(run)) {
        return "text has no exponents: write all digits";
    }
    if (run.find_first_not_of("-0123456789_") == std::string_view::npos &&
        run.find('_') != std::string_view::npos) {
        return "numbers have no separators: remove the underscores";
    }
    if (run.find_first_not_of("0123456789.-:/") == std::string_view::npos) {
        return "versions, dates and times are strings: add quotes: " + quoted(run);
    }
    return "a number with a unit is a string: add quotes: " + quoted(run);
}

} // namespace kel::tool
