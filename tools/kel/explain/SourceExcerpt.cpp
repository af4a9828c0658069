#include "explain/SourceExcerpt.h"

#include "explain/ShownText.h"
#include "words/Utf8.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr size_t mostColumns = 100;   // of an excerpt, because the terminal's width is unknown
constexpr size_t columnsBefore = 60;  // of them before the culprit
constexpr size_t tabColumns = 8;      // that a tab takes at most
constexpr size_t narrowestNumber = 5; // the columns of line numbers
constexpr size_t reach = 4096;        // bytes around the culprit that are looked at
constexpr std::string_view cut = "...";

size_t beginOfLine(std::string_view content, size_t at) {
    const size_t end = content.substr(0, at).rfind('\n');
    return end == std::string_view::npos ? 0 : end + 1;
}

size_t endOfLine(std::string_view content, size_t at) {
    const size_t end = std::min(content.find('\n', at), content.size());
    return end > at && content[end - 1] == '\r' ? end - 1 : end;
}

/// Returns the beginning of the character before an offset.
size_t stepBack(std::string_view content, size_t at, size_t begin) {
    constexpr size_t longestSequence = 4;
    for (size_t length = 2; length <= longestSequence && length <= at - begin; ++length) {
        if (utf8SequenceLength(content.substr(at - length, length)) == length) {
            return at - length;
        }
    }
    return at - 1;
}

size_t columnsOf(std::string_view content, size_t at) {
    return content[at] == '\t' ? tabColumns : firstCharacter(content.substr(at)).columns;
}

/// The part of a line that is shown, and the line of marks below it.
class Excerpt {
public:
    Excerpt(std::string_view content, const Fault& fault)
        : content_(content), line_(beginOfLine(content, fault.at)), at_(line_) {
        const size_t lineEnd = std::max(endOfLine(content, fault.at), fault.at);
        startBefore(fault.at);
        if (at_ != line_) {
            text_ = cut;
            marks_.assign(cut.size(), ' ');
        }
        appendUntil(fault.at, ' ');
        const size_t marked = marks_.size();
        appendUntil(std::min(fault.at + fault.length, lineEnd), '^');
        if (marks_.size() == marked) {
            marks_ += '^';
        }
        const size_t marksEnd = marks_.size();
        appendUntil(lineEnd, ' ');
        marks_.resize(marksEnd);
        if (at_ < lineEnd) {
            text_ += cut;
        }
    }

    const std::string& text() const { return text_; }
    const std::string& marks() const { return marks_; }

private:
    /// Moves the beginning so that the culprit is not far to the right.
    void startBefore(size_t culprit) {
        size_t begin = culprit;
        while (begin > line_) {
            const size_t before = stepBack(content_, begin, line_);
            columns_ += columnsOf(content_, before);
            if (columns_ > columnsBefore) {
                break;
            }
            begin = before;
        }
        at_ = begin;
        columns_ = 0;
    }

    /// Appends characters and as many marks, until the excerpt is as wide as it may be.
    void appendUntil(size_t end, char mark) {
        while (at_ < end && columns_ < mostColumns) {
            const char c = content_[at_];
            columns_ += columnsOf(content_, at_);
            if (c == '\t') {
                text_ += c;
                marks_ += mark == ' ' ? '\t' : mark;
                ++at_;
                continue;
            }
            const ShownCharacter character = firstCharacter(content_.substr(at_));
            text_ += character.text;
            marks_.append(character.columns, mark);
            at_ += character.length;
        }
    }

    std::string_view content_;
    size_t line_;
    size_t at_;
    size_t columns_ = 0;
    std::string text_;
    std::string marks_;
};

} // namespace

SourcePlace sourcePlaceOf(std::string_view content, size_t at) {
    const auto lines =
        std::count(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    uint64_t column = 1;
    for (size_t i = beginOfLine(content, at); i < at; ++column) {
        i += std::max<size_t>(utf8SequenceLength(content.substr(i)), 1);
    }
    return {static_cast<uint64_t>(lines) + 1, column};
}

std::string sourcePlace(std::string_view content, size_t at) {
    const auto [line, column] = sourcePlaceOf(content, at);
    return std::to_string(line) + ':' + std::to_string(column);
}

size_t endOfInk(std::string_view content) {
    return content.find_last_not_of(" \t\r\n\f") + 1; // 0 if nothing is found
}

std::string excerptOf(std::string_view content, const Fault& fault, std::string_view lineNumber) {
    // A line can be as long as the content.
    const size_t begin = fault.at - std::min(fault.at, reach);
    Fault nearby = fault;
    nearby.at -= begin;
    const Excerpt excerpt(content.substr(begin, 2 * reach), nearby);
    const std::string number(lineNumber);
    const size_t width = std::max(narrowestNumber, number.size());
    const std::string margin(width, ' ');
    std::string text;
    if (!excerpt.text().empty()) {
        text += '\n' + std::string(width - number.size(), ' ') + number + " | " + excerpt.text() +
                '\n' + margin + " | " + excerpt.marks();
    }
    if (!fault.hint.empty()) {
        text += '\n' + margin + " = hint: " + fault.hint;
    }
    return text;
}

} // namespace kel::tool
