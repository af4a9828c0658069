#include "document/TextExtras.h"

#include <algorithm>
#include <vector>

namespace kel::tool {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_' || c == '@';
}

/// Walks over the tokens of a text.
class ExtraSearch {
public:
    explicit ExtraSearch(std::string_view text) : text_(text) {}

    std::optional<TextExtra> find() {
        while (at_ < text_.size()) {
            begin_ = at_;
            if (const char* words = next()) {
                const auto begin = text_.begin();
                const auto place = begin + static_cast<std::ptrdiff_t>(begin_);
                return TextExtra{static_cast<uint64_t>(std::count(begin, place, '\n')) + 1, words};
            }
        }
        return std::nullopt;
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

    /// Passes over a token or a character between tokens. \return what it is if it is lost, or null
    const char* next() {
        const char c = text_[at_];
        if (c == '"') {
            at_ = std::min(text_.find('"', at_ + 1), text_.size() - 1) + 1;
            return nullptr;
        }
        if (c == '#') {
            return "a definition";
        }
        if (c == '/') {
            return skip("/* keys: */") || skip("/* values: */") ? nullptr : "a comment";
        }
        if (isHexDigit(c) && skipHashCode()) {
            return isIdentity() ? "an identity" : nullptr;
        }
        if (isWordCharacter(c)) {
            return word();
        }
        ++at_;
        if (c == '(' || c == '[' || c == '{' || c == '<') {
            isManager_.push_back(c == '(');
            isDescriptor_ = false;
        } else if ((c == ')' || c == ']' || c == '}' || c == '>') && !isManager_.empty()) {
            isManager_.pop_back();
        }
        return nullptr;
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

    const char* word() {
        const size_t begin = at_;
        // A header word ends before the next "@".
        do {
            ++at_;
        } while (at_ < text_.size() && isWordCharacter(text_[at_]) && text_[at_] != '@');
        const std::string_view word = text_.substr(begin, at_ - begin);
        if (word == "REF" || word == "ref") {
            skipBlanks(" \t\r\n\f");
            return at_ < text_.size() && isHexDigit(text_[at_]) ? "a reference" : nullptr;
        }
        if (word == "@type") {
            skipBlanks(" \t=");
            isDescriptor_ = rest().starts_with("51");
        } else if (word == "@hashCode") {
            skipBlanks(" \t=");
            // The writer writes this identity of a struct descriptor.
            return skipHashCode() && !isDescriptor_ ? "an identity" : nullptr;
        }
        return nullptr;
    }

    std::string_view text_;
    size_t at_ = 0;
    size_t begin_ = 0;            ///< of the current token
    std::vector<bool> isManager_; ///< the open brackets: whether each is a manager's
    bool isDescriptor_ = false;   ///< whether the last header is that of a struct descriptor
};

} // namespace

std::optional<TextExtra> firstTextExtra(std::string_view text) {
    return ExtraSearch(text).find();
}

} // namespace kel::tool
