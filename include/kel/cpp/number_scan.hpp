/// \file
/// number_scan: finds the numbers of a text that reading changes.
#pragma once

#include <kel/cpp/path.hpp>
#include <kel/cpp/text_tokens.hpp>

#include <map>

namespace kel {
inline namespace v1 {
namespace detail {

/// Follows a text that the library has read, one root value after the other, and finds the numbers
/// that it has changed because 32 bits do not hold them. Quoted words, names, comments, hash codes
/// and definitions that no value uses have none. It uses no recursion, and takes no more time than
/// the library: the text of a definition is followed wherever it is used.
class number_scan {
public:
    /// Scans a text, which is borrowed.
    explicit number_scan(std::string_view content) : content_(content) {
        sources_.emplace_back(content, 0, content.size());
    }

    /// Scans the next root value. Calls the function with the offset and the text of each number
    /// that reading has changed. path returns where its value is. The function can throw.
    template <class Found> void next_root(const Found& found) {
        for (is_complete_ = false; !is_complete_;) {
            tokens().skip_layout();
            if (!tokens().is_at_end()) {
                step(found);
            } else if (sources_.size() > 1) {
                sources_.pop_back(); // the end of a definition
            } else {
                return;
            }
        }
        sources_.erase(sources_.begin() + 1, sources_.end());
    }

    /// Returns the path of the value that is being scanned.
    std::string path() const {
        std::string path;
        for (const level& each : levels_) {
            switch (each.what) {
            case shape::structure:
                if (!each.name.empty()) { // otherwise the number is in the header
                    add_name(path, each.name);
                }
                break;
            case shape::index_list:
                break;
            case shape::keys:
            case shape::items:
                add_index(path, each.index);
                add_name(path, each.what == shape::keys ? "key" : "item");
                break;
            case shape::array:
            case shape::manager:
                add_index(path, each.index);
                break;
            }
        }
        return path;
    }

private:
    using token_kind = text_tokens::kind;
    enum class shape { array, structure, manager, index_list, keys, items };
    /// A container that is open.
    struct level {
        shape what;
        std::int32_t index = 0; ///< of the next element
        std::string_view name;  ///< of the variable
    };
    /// The place of the text of a definition.
    struct definition {
        std::size_t begin;
        std::size_t end;
    };

    text_tokens& tokens() { return sources_.back(); }
    bool is_in(shape what) const { return !levels_.empty() && levels_.back().what == what; }

    template <class Found> void step(const Found& found) {
        const char c = tokens().peek();
        if (c == ']' || c == '}' || c == ')' || c == '>') {
            tokens().move_to(tokens().at() + 1);
            close();
        } else if (!awaits_value_ && is_in(shape::structure)) {
            levels_.back().name = tokens().take_name();
            expect_value();
        } else if (!awaits_value_ && is_in(shape::manager)) {
            tokens().take_hash_code();
            has_identity_ = true;
            expect_value();
        } else if (c == '#') {
            define();
        } else if (c == '[' || c == '{' || c == '(' || c == '<') {
            open(c, found);
        } else {
            take_scalar(found);
        }
    }
    /// Passes over the sign between a name and its value.
    void expect_value() {
        if (!tokens().take('=')) {
            tokens().move_to(tokens().at() + 1); // which the library does not read
        }
        awaits_value_ = true;
    }

    template <class Found> void open(char bracket, const Found& found) {
        const bool is_keys = is_in(shape::index_list) && levels_.back().index == 0;
        tokens().move_to(tokens().at() + 1);
        levels_.push_back({bracket == '{'             ? shape::structure
                           : bracket == '('           ? shape::manager
                           : bracket == '<'           ? shape::index_list
                           : is_keys                  ? shape::keys
                           : is_in(shape::index_list) ? shape::items
                                                      : shape::array,
                           0, std::string_view()});
        awaits_value_ = has_identity_ = false;
        if (bracket == '{') {
            take_header(found);
        }
    }
    void close() {
        if (!levels_.empty()) {
            levels_.pop_back();
        }
        complete();
    }
    /// Ends a value. Arrays leave nulls out.
    void complete(bool is_null = false) {
        awaits_value_ = has_identity_ = false;
        if (levels_.empty()) {
            is_complete_ = true;
        } else if (!is_null) {
            ++levels_.back().index;
        }
    }

    template <class Found> void take_scalar(const Found& found) {
        const std::size_t at = tokens().at();
        const text_tokens::token next = tokens().take();
        switch (next.kind) {
        case token_kind::number:
            judge(at, next.text, found);
            complete();
            break;
        case token_kind::word:
            take_word(next.text);
            break;
        case token_kind::hash_code:
            take_identity_or_guid();
            break;
        case token_kind::quoted:
            complete();
            break;
        case token_kind::other: // which the library does not read
            break;
        }
    }
    template <class Found>
    static void judge(std::size_t at, std::string_view number, const Found& found) {
        if (written_number(number).wraps()) {
            found(at, number);
        }
    }
    void take_word(std::string_view word) {
        if (word == "REF" || word == "ref") {
            tokens().skip_layout();
            tokens().take_hash_code();
            complete();
        } else if (word == "null" || word == "NULL") {
            complete(true);
        } else if (word == "true" || word == "false") {
            complete();
        } else if (const auto known = definitions_.find(word); known != definitions_.end()) {
            sources_.emplace_back(content_, known->second.begin, known->second.end);
        }
    }
    /// A hash code is a guid at the end of its line, otherwise the identity of a value.
    void take_identity_or_guid() {
        constexpr std::string_view brackets = "]})>";
        if (has_identity_ || !tokens().skip_on_line() || tokens().is_at_end() ||
            brackets.find(tokens().peek()) != std::string_view::npos) {
            complete();
            return;
        }
        if (tokens().peek() == '=') {
            tokens().move_to(tokens().at() + 1);
        }
        awaits_value_ = has_identity_ = true;
    }
    /// Passes over the kind and the identity after the brace of a struct.
    template <class Found> void take_header(const Found& found) {
        for (;;) {
            const std::size_t before = tokens().at();
            tokens().skip_on_line();
            const text_tokens::token word = tokens().take();
            const bool is_type = word.text == "@type";
            if (word.kind != token_kind::word || (!is_type && word.text != "@hashCode")) {
                tokens().move_to(before);
                return;
            }
            tokens().take('=');
            tokens().skip_layout();
            const std::size_t at = tokens().at();
            if (is_type) {
                judge(at, tokens().take().text, found);
            } else {
                tokens().take_hash_code();
            }
            tokens().skip_on_line();
            if (tokens().peek() == ',') {
                tokens().move_to(tokens().at() + 1);
            }
        }
    }
    /// Remembers a definition, which begins here.
    void define() {
        tokens().move_to(tokens().at() + 1);
        take_word_on_line(); // "define"
        const std::string_view name = take_word_on_line();
        const std::string_view text = tokens().take_definition();
        const std::size_t end = tokens().at();
        definitions_[name] = {end - text.size(), end};
    }
    std::string_view take_word_on_line() {
        tokens().skip_on_line();
        return tokens().take().text;
    }

    std::string_view content_;
    std::vector<text_tokens> sources_; ///< the content, and the definitions that are being followed
    std::vector<level> levels_;
    std::map<std::string_view, definition> definitions_;
    bool awaits_value_ = false; ///< after a name or an identity
    bool has_identity_ = false;
    bool is_complete_ = false; ///< the root value has ended
};

} // namespace detail
} // namespace v1
} // namespace kel
