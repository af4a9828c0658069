#include "path/Path.h"

#include "failures/Failure.h"
#include "path/PathText.h"

#include <charconv>

namespace kel::tool {

namespace {

/// Reads the text of a path from its beginning to its end.
class PathReader {
public:
    explicit PathReader(std::string_view text) : text_(text) {}

    Path read() {
        Path path;
        path.root = rootNumber();
        if (rest() == PathText::ofRoot || rest() == ".") {
            return path;
        }
        while (at_ < text_.size()) {
            path.steps.push_back(step(path.steps.empty()));
        }
        return path;
    }

private:
    std::string_view rest() const { return text_.substr(at_); }

    bool skip(std::string_view lead) {
        const bool isThere = rest().starts_with(lead);
        at_ += isThere ? lead.size() : 0;
        return isThere;
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw Failure{Trouble::usage, '"' + PathText::shortened(withoutControls(text_)) +
                                          "\" is not a path: at character " +
                                          std::to_string(at_ + 1) + ": " + reason};
    }

    /// Takes the characters that belong to a bare word.
    std::string_view word() {
        const size_t begin = at_;
        while (at_ < text_.size() && isBareInPath(text_[at_])) {
            ++at_;
        }
        return text_.substr(begin, at_ - begin);
    }

    /// Takes a decimal number.
    std::optional<uint64_t> number() {
        uint64_t value = 0;
        const char* begin = text_.data() + at_;
        const auto parsed = std::from_chars(begin, text_.data() + text_.size(), value);
        if (parsed.ec != std::errc()) {
            return std::nullopt;
        }
        at_ += static_cast<size_t>(parsed.ptr - begin);
        return value;
    }

    std::optional<size_t> rootNumber() {
        const std::optional<uint64_t> number = this->number();
        if (number && skip(":")) {
            if (*number == 0 || *number > SIZE_MAX) {
                at_ = 0;
                fail("root values are numbered from 1");
            }
            return static_cast<size_t>(*number - 1);
        }
        at_ = 0; // digits alone are a name
        return std::nullopt;
    }

    Step step(bool isFirst) {
        if (skip("[\"")) {
            return {Step::Kind::name, 0, quotedName()};
        }
        if (skip("[")) {
            const std::optional<uint64_t> index = number();
            if (!index) {
                fail("a number or a quoted name is expected");
            }
            if (!skip("]")) {
                fail("\"]\" is expected");
            }
            return {Step::Kind::index, *index, {}};
        }
        if (skip("#")) {
            return {Step::Kind::identity, 0, identity()};
        }
        if (!skip(".") && !isFirst) {
            fail("\".\", \"[\" or \"#\" is expected");
        }
        const std::string_view name = word();
        if (name.empty()) {
            fail("a name is expected");
        }
        return {Step::Kind::name, 0, std::string(name)};
    }

    std::string identity() {
        constexpr std::string_view digits = "0123456789abcdefABCDEF-";
        const size_t begin = at_;
        while (at_ < text_.size() && digits.find(text_[at_]) != std::string_view::npos) {
            ++at_;
        }
        if (at_ == begin) {
            fail("the digits of an identity are expected");
        }
        std::string text(text_.substr(begin, at_ - begin));
        for (char& c : text) {
            c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
        }
        return text;
    }

    /// Takes the name up to its closing quote and bracket.
    std::string quotedName() {
        std::string name;
        while (!skip("\"]")) {
            if (at_ >= text_.size()) {
                fail("the end of the quoted name, \"], is expected");
            }
            name += skip("\\") ? escaped() : text_[at_++];
        }
        return name;
    }

    /// Takes the rest of an escape, after its backslash.
    char escaped() {
        if (skip("u")) {
            return byte(4);
        }
        if (skip("x")) {
            return byte(2);
        }
        constexpr std::string_view letters = "\"\\nt";
        constexpr std::string_view characters = "\"\\\n\t";
        const size_t which = at_ < text_.size() ? letters.find(text_[at_]) : std::string_view::npos;
        if (which == std::string_view::npos) {
            fail("one of the escapes \\\", \\\\, \\n, \\t, \\uHHHH and \\xHH is expected");
        }
        ++at_;
        return characters[which];
    }

    /// Takes the digits of a byte in an escape.
    char byte(size_t digitCount) {
        const std::string_view digits = rest().substr(0, digitCount);
        unsigned value = 0;
        const auto parsed =
            std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        constexpr unsigned greatest = 0xFF;
        if (digits.size() < digitCount || parsed.ptr != digits.data() + digitCount ||
            value > greatest) {
            fail("hexadecimal digits of a byte are expected");
        }
        at_ += digitCount;
        return static_cast<char>(value);
    }

    std::string_view text_;
    size_t at_ = 0;
};

} // namespace

Path Path::of(std::string_view text) {
    return PathReader(text).read();
}

std::string Path::text(size_t count) const {
    PathText text;
    for (size_t i = 0; i < count; ++i) {
        const Step& step = steps[i];
        switch (step.kind) {
        case Step::Kind::index:
            text.addIndex(step.index);
            break;
        case Step::Kind::name:
            text.addName(step.text);
            break;
        case Step::Kind::identity:
            text.addIdentity(step.text);
            break;
        }
    }
    return text.whole();
}

std::string Path::text() const {
    const std::string inside = PathText::shortened(text(steps.size()));
    return root ? withRoot(inside, *root, SIZE_MAX) : inside;
}

} // namespace kel::tool
