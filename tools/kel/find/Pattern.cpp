#include "find/Pattern.h"

#include "words/Utf8.h"

#include <algorithm>
#include <optional>

namespace kel::tool {

namespace {

char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Returns the number of bytes of the first character. A byte that is not valid UTF-8 counts as a
/// character.
size_t characterSize(std::string_view text) {
    return std::max<size_t>(utf8SequenceLength(text), 1);
}

} // namespace

Pattern::Pattern(std::string text, bool isGlob, bool ignoresCase)
    : isGlob_(isGlob), ignoresCase_(ignoresCase), part_(std::move(text)) {
    if (ignoresCase) {
        std::transform(part_.begin(), part_.end(), part_.begin(), lowerCase);
    }
    if (isGlob) {
        readGlob(part_);
    }
}

void Pattern::readGlob(std::string_view text) {
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '*') {
            glob_.push_back({Element::Kind::anyCharacters});
        } else if (text[at] == '?') {
            glob_.push_back({Element::Kind::anyCharacter});
        } else {
            at += text[at] == '\\' && at + 1 < text.size() ? 1 : 0;
            glob_.push_back({Element::Kind::byte, text[at]});
        }
    }
}

bool Pattern::matches(std::string_view text) {
    if (ignoresCase_) {
        lowerCase_.resize(text.size());
        std::transform(text.begin(), text.end(), lowerCase_.begin(), lowerCase);
        text = lowerCase_;
    }
    return isGlob_ ? matchesGlob(text) : text.find(part_) != std::string_view::npos;
}

/// Gives every "*" as few characters as possible. After a mismatch, only the last "*" gets one
/// more: a longer match of an earlier one could not help.
bool Pattern::matchesGlob(std::string_view text) const {
    size_t next = 0; // element
    size_t at = 0;   // byte of the text
    std::optional<size_t> lastStar;
    size_t starEnd = 0; // the byte after those that the last "*" has got
    while (at < text.size()) {
        const Element* element = next < glob_.size() ? &glob_[next] : nullptr;
        if (element != nullptr && element->kind == Element::Kind::anyCharacters) {
            lastStar = next++;
            starEnd = at;
        } else if (element != nullptr && element->kind == Element::Kind::anyCharacter) {
            ++next;
            at += characterSize(text.substr(at));
        } else if (element != nullptr && element->byte == text[at]) {
            ++next;
            ++at;
        } else if (lastStar) {
            next = *lastStar + 1;
            starEnd += characterSize(text.substr(starEnd));
            at = starEnd;
        } else {
            return false;
        }
    }
    return std::all_of(
        glob_.begin() + static_cast<std::ptrdiff_t>(next), glob_.end(),
        [](const Element& element) { return element.kind == Element::Kind::anyCharacters; });
}

} // namespace kel::tool
