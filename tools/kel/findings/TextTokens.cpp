#include "findings/TextTokens.h"

#include <algorithm>

namespace kel::tool {

bool TextTokens::skipLayout() {
    try {
        return scanner_.skipLayout();
    } catch (const Fault&) {
        scanner_.moveTo(scanner_.end());
        return false;
    }
}

bool TextTokens::skipOnLine() {
    const size_t before = at();
    const bool endsLine = skipLayout();
    if (endsLine) {
        moveTo(before);
    }
    return !endsLine;
}

bool TextTokens::take(char character) {
    skipLayout();
    if (isAtEnd() || peek() != character) {
        return false;
    }
    moveTo(at() + 1);
    return true;
}

std::string_view TextTokens::takeUntil(size_t end) {
    const size_t begin = at();
    moveTo(end);
    return content_.substr(begin, end - begin);
}

std::string_view TextTokens::takeToken(TextToken::Kind kind) {
    const TextToken token = scanner_.valueToken();
    return token.kind == kind ? takeUntil(token.end) : std::string_view();
}

std::optional<std::string_view> TextTokens::takeQuoted() {
    if (peek() != '"') {
        return std::nullopt;
    }
    const std::string_view word = takeToken(TextToken::Kind::quoted);
    return word.empty() ? std::nullopt : std::optional(word.substr(1, word.size() - 2));
}

std::string TextTokens::takeHashCode() {
    const size_t end = scanner_.endOfHashCode();
    std::string text;
    size_t digits = 0;
    for (const char c : takeUntil(std::max(end, at()))) {
        if (c == '-') {
            continue;
        }
        const bool isGroupEnd = digits == 8 || digits == 12 || digits == 16 || digits == 20;
        text += isGroupEnd ? "-" : "";
        text += c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
        ++digits;
    }
    return text;
}

std::string_view TextTokens::takeDefinitionText() {
    const size_t begin = content_.find_first_not_of(" \t\r\n", at());
    moveTo(std::min(begin, content_.size()));
    return takeUntil(std::min(content_.find_first_of("\n\f\r", at()), content_.size()));
}

} // namespace kel::tool
