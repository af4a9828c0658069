#include "document/TextExtras.h"

#include "explain/TextScanner.h"
#include "words/Counted.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace kel::tool {

namespace {

/// The parts of a text that values do not hold.
enum class Extra { none, comment, definition, identity, reference };

/// Returns what the part is, as a literal.
const char* wordsFor(Extra extra) {
    switch (extra) {
    case Extra::comment:
        return "a comment";
    case Extra::definition:
        return "a definition";
    case Extra::identity:
        return "an identity";
    case Extra::reference:
        return "a reference";
    // not reached: nobody asks for the words of nothing
    case Extra::none:
        break;
    }
    return "nothing";
}

/// Walks over the tokens of a text.
class ExtraSearch {
public:
    explicit ExtraSearch(const InputBytes& text) : text_(text), trail_(text) {}

    /// Moves past the next part that is lost. \return what it is, or none at the end
    Extra find() {
        while (at_ < text_.size()) {
            begin_ = at_;
            trail_.reach(text_.data() + at_);
            if (const Extra extra = next(); extra != Extra::none) {
                return extra;
            }
        }
        return Extra::none;
    }

    /// Returns the line of the part that was found last.
    uint64_t line() const {
        const auto place = text_.begin() + static_cast<std::ptrdiff_t>(begin_);
        return static_cast<uint64_t>(std::count(text_.begin(), place, '\n')) + 1;
    }

private:
    std::string_view rest() const { return text_.substr(at_); }

    bool skip(std::string_view lead) {
        const bool isThere = rest().starts_with(lead);
        at_ += isThere ? lead.size() : 0;
        return isThere;
    }

    void skipBlanks(std::string_view blanks) {
        at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size());
    }

    /// Passes over a token or a character between tokens. \return what it is if it is lost
    Extra next() {
        const char c = text_[at_];
        if (c == '"') {
            skipQuoted();
            return Extra::none;
        }
        if (c == '#') {
            skipDefinition();
            return Extra::definition;
        }
        if (c == '/') {
            if (skip("/* keys: */") || skip("/* values: */")) {
                return Extra::none;
            }
            skipComment();
            return Extra::comment;
        }
        if (isHexDigit(c) && skipHashCode()) {
            return isIdentity() ? Extra::identity : Extra::none;
        }
        if (isInKey(c)) {
            return word();
        }
        ++at_;
        if (c == '(' || c == '[' || c == '{' || c == '<') {
            isManager_.push_back(c == '(');
            isDescriptor_ = false;
        } else if ((c == ')' || c == ']' || c == '}' || c == '>') && !isManager_.empty()) {
            isManager_.pop_back();
        }
        return Extra::none;
    }

    void skipComment() {
        try {
            at_ = TextScanner(text_, at_, text_.size()).endOfComment();
        } catch (const Fault&) {
            at_ = text_.size(); // the text is not valid
        }
    }

    void skipQuoted() { at_ = std::min(text_.find('"', at_ + 1), text_.size() - 1) + 1; }

    /// Passes over a definition: "#define", the name, and its text, which ends with its line.
    void skipDefinition() {
        constexpr std::string_view lead = "define";
        at_ = std::min(text_.find(lead, at_), text_.size());
        skip(lead);
        skipBlanks(" \t");
        if (rest().starts_with('"')) {
            skipQuoted();
        } else {
            at_ = TextScanner(text_, at_, text_.size()).endOfBareKey();
        }
        skipBlanks(" \t\r\n");
        at_ = std::min(text_.find_first_of("\n\f\r", at_), text_.size());
    }

    /// Passes over a hash code: 32 digits with dashes between them.
    /// \return false, without a change, if another token is here
    bool skipHashCode() {
        constexpr size_t digitCount = 32;
        constexpr size_t longest = 2 * digitCount;
        size_t digits = 0;
        const size_t end = std::min(text_.size(), at_ + longest);
        size_t at = at_;
        for (; at < end && (isHexDigit(text_[at]) || text_[at] == '-'); ++at) {
            digits += text_[at] == '-' ? 0 : 1;
        }
        const bool isHashCode = digits == digitCount && at - at_ > digitCount;
        at_ = isHashCode ? at : at_;
        return isHashCode;
    }

    /// Returns whether the hash code before this place is the identity of a value, and not a value
    /// itself. The writer writes the identities of a manager's values.
    bool isIdentity() {
        if (!isManager_.empty() && isManager_.back()) {
            return false;
        }
        skipBlanks(" \t");
        constexpr std::string_view ends = "\n\r\f)]}>";
        return at_ < text_.size() && ends.find(text_[at_]) == std::string_view::npos &&
               !rest().starts_with("//") && !rest().starts_with("/*");
    }

    Extra word() {
        const size_t begin = at_;
        // A header word ends before the next "@".
        do {
            ++at_;
        } while (at_ < text_.size() && isInKey(text_[at_]) && text_[at_] != '@');
        const std::string_view word = text_.substr(begin, at_ - begin);
        if (word == "REF" || word == "ref") {
            skipBlanks(" \t\r\n\f");
            return at_ < text_.size() && isHexDigit(text_[at_]) ? Extra::reference : Extra::none;
        }
        if (word == "@type") {
            skipBlanks(" \t=");
            isDescriptor_ = rest().starts_with("51");
        } else if (word == "@hashCode") {
            skipBlanks(" \t=");
            // The writer writes this identity of a struct descriptor.
            return skipHashCode() && !isDescriptor_ ? Extra::identity : Extra::none;
        }
        return Extra::none;
    }

    std::string_view text_;
    Trail trail_;
    size_t at_ = 0;
    size_t begin_ = 0;            ///< of the current token
    std::vector<bool> isManager_; ///< the open brackets: whether each is a manager's
    bool isDescriptor_ = false;   ///< whether the last header is that of a struct descriptor
};

} // namespace

std::optional<TextExtra> firstTextExtra(const InputBytes& text) {
    ExtraSearch search(text);
    const Extra extra = search.find();
    return extra == Extra::none ? std::nullopt
                                : std::optional(TextExtra{search.line(), wordsFor(extra)});
}

Annotations annotationsIn(const InputBytes& text) {
    Annotations found;
    ExtraSearch search(text);
    for (Extra extra = search.find(); extra != Extra::none; extra = search.find()) {
        const bool isComment = extra == Extra::comment;
        if (!isComment && extra != Extra::definition) {
            continue;
        }
        ++(isComment ? found.comments : found.definitions);
        if (found.line == 0) {
            found.line = search.line();
        }
    }
    return found;
}

std::string lossOf(const Annotations& annotations, bool isCertain) {
    const auto [comments, definitions, line] = annotations;
    const bool isOne = comments + definitions == 1;
    std::string words = comments > 0 ? counted(comments, "comment") : "";
    if (definitions > 0) {
        words += (words.empty() ? "" : " and ") + counted(definitions, "definition");
    }
    words += !isCertain ? " would be" : isOne ? " is" : " are";
    return words + " lost, because only values are written; " + (isOne ? "it" : "the first") +
           " is on line " + std::to_string(line);
}

} // namespace kel::tool
