/// \file
/// Reading what a person typed as the value of a described variable.
#pragma once

#include <kel/cpp/rules.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the text without blanks at its ends.
inline std::string_view trimmed(std::string_view text) {
    constexpr const char* blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// Returns the text without the texts that a description shows before and after the value.
inline std::string_view without_adornments(std::string_view text, std::string_view before,
                                           std::string_view after) {
    before = trimmed(before);
    after = trimmed(after);
    if (text.substr(0, before.size()) == before) {
        text.remove_prefix(before.size());
    }
    if (text.size() >= after.size() && text.substr(text.size() - after.size()) == after) {
        text.remove_suffix(after.size());
    }
    return trimmed(text);
}

/// Reads a whole text as a number with a decimal point, in every locale. The error is
/// result_out_of_range for a number that no double is near to, and invalid_argument for any other
/// text.
inline std::errc read_number(std::string_view text, double& number) {
    const bool has_plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data() + (has_plus ? 1 : 0), end, number);
    if (read.ptr != end || read.ec == std::errc::invalid_argument) {
        return std::errc::invalid_argument;
    }
    const bool is_number =
        read.ec != std::errc() || std::isfinite(number); // "inf" and "nan" are not
    return is_number ? read.ec : std::errc::invalid_argument;
}

/// Returns the choice that a person typed, with or without the texts before and after it, or null.
/// Blanks at the ends do not count, unless two choices differ only in them.
inline value typed_choice(const MetaKelVarDescriptor& rules, std::string_view text) {
    value like;
    for (const value& each : choices_of(rules).elements()) {
        for (const std::string& shown : {plain_text(each.raw()), adorned_text(rules, each.raw())}) {
            if (text == shown) {
                return each;
            }
            if (!like && trimmed(text) == trimmed(shown)) {
                like = each;
            }
        }
    }
    return like;
}

/// The words for false and true that a person can type, in any case.
inline constexpr std::string_view words_for_truth[][2] = {
    {"false", "true"}, {"off", "on"}, {"no", "yes"}, {"0", "1"}};

/// Returns all words that a person can type for a truth value.
inline std::string typed_truths() {
    std::string list;
    for (const auto& [no, yes] : words_for_truth) {
        list += (list.empty() ? "" : ", ") + std::string(yes) + " or " + std::string(no);
    }
    return list;
}

/// Returns whether a typed word is one in lower case. Only letters of ASCII have a case here.
inline bool is_word(std::string_view typed, std::string_view word) {
    return std::equal(typed.begin(), typed.end(), word.begin(), word.end(), [](char a, char b) {
        return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b);
    });
}

/// Reads a word as a truth value. \return nothing for any other word
inline std::optional<bool> read_truth(std::string_view typed) {
    for (const auto& [no, yes] : words_for_truth) {
        if (is_word(typed, no) || is_word(typed, yes)) {
            return is_word(typed, yes);
        }
    }
    return std::nullopt;
}

/// Reads what a person typed for a described variable. Whether the description allows the value is
/// not checked. \param reason set to why the text cannot be such a value
inline value read_typed(const MetaKelVarDescriptor& rules, const std::string& path,
                        std::string_view text, std::string& reason) {
    const std::string before = text_of(rules.getPreadorn());
    const std::string after = text_of(rules.getPostadorn());
    const auto refuse = [&](const char* why) {
        reason = with_allowed(rules, lead(path) + '"' + std::string(text) + "\" " + why);
        return value();
    };
    if (rules.isEnumerated()) {
        if (value choice = typed_choice(rules, text)) {
            return choice;
        }
    }
    const std::int32_t wanted = rules.getVariableType();
    if (wanted == KELKind_Int || wanted == KELKind_Double) {
        double number = 0;
        std::errc result = read_number(trimmed(text), number);
        if (result == std::errc::invalid_argument) {
            result = read_number(without_adornments(trimmed(text), before, after), number);
        }
        return result == std::errc()                      ? value(number)
               : result == std::errc::result_out_of_range ? refuse("does not fit a Double.")
                                                          : refuse("is not a number.");
    }
    if (wanted == KELKind_Boolean) {
        const std::string_view whole = trimmed(text);
        for (const std::string_view word : {whole, without_adornments(whole, before, after)}) {
            if (const std::optional<bool> truth = read_truth(word)) {
                return value(*truth);
            }
        }
        reason =
            with_words(lead(path) + '"' + std::string(text) + "\" is not allowed.", typed_truths());
        return value();
    }
    return text.find('\0') == std::string_view::npos ? value(text) : refuse("contains a NUL.");
}

} // namespace detail
} // namespace v1
} // namespace kel
