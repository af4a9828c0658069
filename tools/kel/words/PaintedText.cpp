#include "words/PaintedText.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr std::string_view separators = " \t\r\n{}[]()<>\"=;,";

/// Returns whether an equals sign follows, so that the part before it is a name.
bool isBeforeEquals(std::string_view rest) {
    const size_t at = rest.find_first_not_of(" \t");
    return at != std::string_view::npos && rest[at] == '=';
}

/// Returns what a word outside quotes is.
Paint paintOf(std::string_view word, std::string_view rest) {
    if (isBeforeEquals(rest)) {
        return Paint::name;
    }
    const char first = word.front();
    return (first >= '0' && first <= '9') || first == '-' ? Paint::number : Paint::word;
}

} // namespace

std::string painted(std::string_view text, const Painter& painter) {
    if (!painter.isOn()) {
        return std::string(text);
    }
    std::string out;
    out.reserve(2 * text.size());
    while (!text.empty()) {
        size_t length = 1;
        if (text.front() == '"') {
            length = std::min(text.find('"', 1), text.size() - 1) + 1;
            out += painter(isBeforeEquals(text.substr(length)) ? Paint::name : Paint::text,
                           text.substr(0, length));
        } else if (text.starts_with("/*")) { // the writer of text closes its comments
            length = text.find("*/") + 2;
            out += painter(Paint::kind, text.substr(0, length));
        } else if (separators.find(text.front()) == std::string_view::npos) {
            length = std::min(text.find_first_of(separators), text.size());
            const std::string_view word = text.substr(0, length);
            out += painter(paintOf(word, text.substr(length)), word);
        } else {
            out += text.front();
        }
        text.remove_prefix(length);
    }
    return out;
}

} // namespace kel::tool
