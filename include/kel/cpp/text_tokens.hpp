/// \file
/// text_tokens: the tokens of a text that the library reads.
#pragma once

#include <kel/cpp/written_number.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Takes one token after the other from a part of a text. The library has read the text, so other
/// characters need not be explained.
class text_tokens {
public:
    /// The kinds of tokens.
    enum class kind { number, word, hash_code, quoted, other };
    struct token {
        text_tokens::kind kind = text_tokens::kind::other;
        std::string_view text; ///< of a quoted word without its quotes
    };

    /// Begins at an offset of the content and ends at another. The content is borrowed.
    text_tokens(std::string_view content, std::size_t begin, std::size_t end)
        : content_(content.substr(0, end)), at_(begin) {}

    std::size_t at() const { return at_; }
    bool is_at_end() const { return at_ >= content_.size(); }
    /// Returns the next character, or NUL at the end.
    char peek() const { return character(at_); }
    void move_to(std::size_t at) { at_ = at; }

    /// Passes over blanks, line ends and comments. \return whether there was a line end
    bool skip_layout() {
        bool has_line_end = false;
        for (;; ++at_) {
            const char c = peek();
            const char next = character(at_ + 1);
            if (c == '\n' || c == '\f' || (c == '\r' && next == '\n')) {
                has_line_end = true;
            } else if (c == '/' && (next == '/' || next == '*')) {
                at_ = end_of_comment() - 1;
            } else if (c != ' ' && c != '\t') {
                return has_line_end;
            }
        }
    }
    /// Passes over blanks and comments. \return false, without having moved, if the line ends there
    bool skip_on_line() {
        const std::size_t before = at_;
        const bool ends_line = skip_layout();
        at_ = ends_line ? before : at_;
        return !ends_line;
    }
    /// Passes over the character after layout, if it comes next. \return whether it does
    bool take(char which) {
        skip_layout();
        const bool is_next = !is_at_end() && peek() == which;
        at_ += is_next ? 1U : 0U;
        return is_next;
    }
    /// Takes the token that begins here, or one character of anything else.
    token take() {
        const char c = peek();
        if (c == '"') {
            const std::size_t quote = (std::min)(content_.find('"', at_ + 1), content_.size());
            const std::string_view inside = content_.substr(at_ + 1, quote - at_ - 1);
            at_ = (std::min)(quote + 1, content_.size());
            return {kind::quoted, inside};
        }
        if (is_digit(c) || c == '-' || c == '.') {
            return take_number();
        }
        if (!is_in_name(c)) {
            return take_to(kind::other, at_ + 1);
        }
        const std::size_t end = skip(at_ + 1, is_in_word);
        return character(end) == '"'   ? take_to(kind::other, end)
               : character(end) == '-' ? take_hash_code_or(kind::other, end)
                                       : take_to(kind::word, end);
    }
    /// Takes a name without quotes, or a quoted one.
    std::string_view take_name() {
        return peek() == '"' ? take().text : take_to(kind::word, skip(at_, is_in_name)).text;
    }
    /// Takes the hash code that begins here, if one does.
    void take_hash_code() { at_ = (std::max)(at_, end_of_hash_code()); }
    /// Takes the text of a definition, which begins after layout and ends before a line end.
    std::string_view take_definition() {
        at_ = (std::min)(content_.find_first_not_of(" \t\r\n", at_), content_.size());
        return take_to(kind::other,
                       (std::min)(content_.find_first_of("\n\f\r", at_), content_.size()))
            .text;
    }

private:
    static bool is_in_word(char c) {
        return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    }
    static bool is_in_name(char c) { return is_in_word(c) || c == '@'; }

    char character(std::size_t at) const { return at < content_.size() ? content_[at] : '\0'; }
    std::size_t skip(std::size_t from, bool (*belongs)(char)) const {
        while (from < content_.size() && belongs(content_[from])) {
            ++from;
        }
        return from;
    }
    token take_to(kind which, std::size_t end) {
        const std::size_t begin = at_;
        at_ = (std::min)(end, content_.size());
        return {which, content_.substr(begin, at_ - begin)};
    }
    token take_hash_code_or(kind which, std::size_t end) {
        const std::size_t hash_code_end = end_of_hash_code();
        return hash_code_end != 0 ? take_to(kind::hash_code, hash_code_end) : take_to(which, end);
    }

    /// Takes a number, or a hash code that begins like one.
    token take_number() {
        constexpr std::size_t hash_code_digits = 32;
        constexpr std::size_t first_group = 8;
        const bool is_negative = peek() == '-';
        const std::size_t digits = at_ + (is_negative ? 1U : 0U);
        std::size_t end = skip(digits, is_digit);
        if (is_negative && end - digits >= hash_code_digits) {
            return take_hash_code_or(kind::other, end);
        }
        if (character(end) == '.') {
            end = skip(end + 1, is_digit);
            const bool is_number = character(end) != '.' && !is_hex_digit(character(end));
            return take_to(is_number ? kind::number : kind::other, end);
        }
        if (is_hex_digit(character(end))) {
            return take_hash_code_or(kind::other, end);
        }
        if (character(end) == 'x' && end == at_ + 1 && peek() == '0') {
            return take_to(kind::number, skip(end + 1, is_hex_digit));
        }
        const bool can_be_hash_code =
            !is_negative && end - at_ == first_group && character(end) == '-';
        return can_be_hash_code ? take_hash_code_or(kind::number, end) : take_to(kind::number, end);
    }
    /// Returns the end of the hash code that begins here, or 0.
    std::size_t end_of_hash_code() const {
        constexpr std::size_t hash_code_digits = 32;
        bool has_dash = false;
        std::size_t end = at_;
        for (std::size_t count = 0; count < hash_code_digits; ++end) {
            if (is_hex_digit(character(end))) {
                ++count;
            } else if (character(end) == '-') {
                has_dash = true;
            } else {
                return 0;
            }
        }
        return has_dash ? end : 0;
    }
    /// Returns the end of a comment. One without an end reaches to the end of the text.
    std::size_t end_of_comment() const {
        if (character(at_ + 1) == '/') {
            return (std::min)(content_.find_first_of("\n\f\r", at_), content_.size());
        }
        bool is_after_star = false;
        for (std::size_t i = at_ + 2; i < content_.size(); ++i) {
            if (is_after_star && content_[i] == '/') {
                return i + 1;
            }
            is_after_star = content_[i] == '*' && !is_after_star; // of two, the second one is text
        }
        return content_.size();
    }

    std::string_view content_;
    std::size_t at_;
};

} // namespace detail
} // namespace v1
} // namespace kel
