// The machines find everything that the plain scanner recognises, even if the window ends early.
#include "serial/tokens/PlainScanner.h"

#include "serial/tokens/StreamTokenizer.h"
#include "support/Bytes.h"
#include "support/PieceStream.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <kel/JException.h>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using kel::PlainScalar;
using kel::PlainScanner;
using Form = PlainScalar::Form;

constexpr uint32_t tokenSeed = 20261122;

/// Tokens in any order, most of them whole.
class RandomTokens {
public:
    std::string next() {
        static const std::vector<std::string> pieces = {"12",
                                                        "-7",
                                                        "0",
                                                        "4294967295",
                                                        "-.5",
                                                        "1.5",
                                                        "-12.250000",
                                                        "12345678",
                                                        "0x1F",
                                                        "true",
                                                        "false",
                                                        "null",
                                                        "NULL",
                                                        "nullx",
                                                        "true1",
                                                        "@type",
                                                        "abc",
                                                        "a_b@1",
                                                        "\"\"",
                                                        "\"two words\"",
                                                        "\"",
                                                        " ",
                                                        "\t\t",
                                                        "\n",
                                                        "\r\n",
                                                        "\r",
                                                        "\f",
                                                        "=",
                                                        " = ",
                                                        "[",
                                                        "]",
                                                        "{",
                                                        "}",
                                                        "-",
                                                        ".",
                                                        "/* c */",
                                                        "// c\n",
                                                        bytes("\0"),
                                                        bytes("\"a\0b\""),
                                                        "\xFF",
                                                        "12345678901234567890123456789012",
                                                        "3F2504E0-4F89-11D3-9A0C-0305E82C3301",
                                                        "12345678-4F89-11D3-9A0C-0305E82C3301",
                                                        "0.1234567890123456789012345678901234567"};
        std::string text;
        for (std::size_t i = 1 + random_() % 5; i > 0; --i) {
            text += pieces[random_() % pieces.size()];
        }
        return text;
    }

private:
    std::mt19937 random_{tokenSeed};
};

/// The state machines at a place of a text.
class Machines {
public:
    Machines(const std::string& text, std::size_t place)
        : tokenizer_(JPointer<JInputStream>(new PieceStream(text))) {
        tokenizer_.addStandardRecognisers();
        tokenizer_.askRecognisersOnly(true);
        tokenizer_.input().seek(static_cast<int64_t>(place));
    }

    /// Returns the next token's type, or none for a quote that is not closed.
    int32_t next() {
        try {
            return tokenizer_.nextToken();
        } catch (const TokenizerException&) {
            return kel::tokenNone;
        }
    }

    /// Returns the first token that is neither whitespace nor one of the other types.
    int32_t skip(std::vector<int32_t> others) {
        int32_t type = next();
        while (type == kel::tokenWhitespace ||
               std::find(others.begin(), others.end(), type) != others.end()) {
            type = next();
        }
        return type;
    }

    bool matches(const PlainScalar& scalar) {
        const int32_t type = next();
        const kel::Token& token = tokenizer_.token();
        const auto isWord = [&](bool quoted, std::string_view text) {
            return type == kel::tokenWord && token.quoted == quoted && token.text == text;
        };
        switch (scalar.form) {
        case Form::integer:
            return type == kel::tokenInteger && token.integer == scalar.integer;
        case Form::floating:
            return type == kel::tokenFloating && std::bit_cast<uint64_t>(token.floating) ==
                                                     std::bit_cast<uint64_t>(scalar.floating);
        case Form::quoted:
            return isWord(true, scalar.text) && scalar.text.find('\0') == std::string::npos;
        case Form::yes:
            return isWord(false, "true");
        case Form::no:
            return isWord(false, "false");
        case Form::null:
            return isWord(false, "null") || isWord(false, "NULL");
        }
        return false;
    }

    /// Reads a key as the text reader does, then whitespace and "=".
    std::optional<std::string> key() {
        std::string result;
        if (next() == kel::tokenWord && tokenizer_.token().quoted) {
            result = tokenizer_.token().text;
        } else {
            tokenizer_.input().seek(tokenizer_.tokenStart());
            result = tokenizer_.readKeyRun();
        }
        const bool equals = skip({}) == kel::tokenNone && tokenizer_.nextRaw() == '=';
        return equals && !result.empty() ? std::optional(result) : std::nullopt;
    }

    /// Returns whether the next word on this line is an item of a struct's header.
    bool atHeader() {
        const bool word = skip({kel::tokenComment}) == kel::tokenWord;
        const kel::Token& token = tokenizer_.token();
        return word && !token.quoted && (token.text == "@type" || token.text == "@hashCode");
    }

    /// Returns the place after the consumed text.
    std::size_t place() { return static_cast<std::size_t>(tokenizer_.input().position()); }

private:
    StreamTokenizer tokenizer_;
};

/// A window that shows a part of a text. A NUL follows the part, however the text continues.
class Window {
public:
    Window(const std::string& text, std::size_t from, std::size_t to)
        : bytes_(text.substr(from, to - from)), from_(from) {}

    const uint8_t* begin() const { return unsignedBytes(bytes_); }
    const uint8_t* end() const { return begin() + bytes_.size(); }
    std::size_t placeOf(const uint8_t* byte) const {
        return from_ + static_cast<std::size_t>(byte - begin());
    }

private:
    std::string bytes_; // in storage of its own, for sanitizers
    std::size_t from_;
};

std::size_t compare(const std::string& text, std::size_t from, std::size_t to) {
    std::size_t recognised = 0;
    const Window window(text, from, to);
    PlainScalar scalar{};
    if (const uint8_t* after = PlainScanner::scanScalar(window.begin(), window.end(), scalar)) {
        Machines machines(text, from);
        EXPECT_TRUE(machines.matches(scalar)) << hex(text) << " from " << from << " to " << to;
        EXPECT_EQ(machines.place(), window.placeOf(after)) << hex(text) << " from " << from;
        ++recognised;
    }
    std::string_view key;
    if (const uint8_t* after = PlainScanner::scanKey(window.begin(), window.end(), key)) {
        Machines machines(text, from);
        EXPECT_EQ(machines.key(), std::optional<std::string>(key)) << hex(text) << " from " << from;
        EXPECT_EQ(machines.place(), window.placeOf(after)) << hex(text) << " from " << from;
        ++recognised;
    }
    if (PlainScanner::hasNoHeader(window.begin())) {
        EXPECT_FALSE(Machines(text, from).atHeader()) << hex(text) << " from " << from;
        ++recognised;
    }
    return recognised;
}

TEST(PlainScanner, RecognisesWhatTheMachinesFindInEveryPartOfRandomTexts) {
    RandomTokens texts;
    std::size_t recognised = 0;
    for (int i = 0; i < 1500; ++i) {
        const std::string text = texts.next();
        for (std::size_t from = 0; from < text.size(); ++from) {
            for (std::size_t to = from; to <= text.size(); ++to) {
                recognised += compare(text, from, to);
            }
        }
        ASSERT_FALSE(HasFailure()) << "seed " << tokenSeed << ", text " << i;
    }
    EXPECT_GT(recognised, 1000U);
}

TEST(PlainScanner, RecognisesWhatTheMachinesFindBeforeEveryByte) {
    for (const std::string before :
         {"", "1", "-1", "1.5", "12345678", "true", "\"a\"", "a", "a ="}) {
        for (int byte = 0; byte < 256; ++byte) {
            compare(before + static_cast<char>(byte) + " = 1", 0, before.size() + 5);
        }
        ASSERT_FALSE(HasFailure());
    }
}

/// Returns the form of the scalar that text begins with, or nothing if it is not recognised.
std::optional<Form> formOf(const std::string& text) {
    PlainScalar scalar{};
    const Window window(text, 0, text.size());
    const bool recognised =
        PlainScanner::scanScalar(window.begin(), window.end(), scalar) != nullptr;
    return recognised ? std::optional(scalar.form) : std::nullopt;
}

TEST(PlainScanner, RecognisesWhatTheWriterWrites) {
    EXPECT_EQ(formOf("-2147483648\n"), Form::integer);
    EXPECT_EQ(formOf("-0.000001\n"), Form::floating);
    EXPECT_EQ(formOf("9223372036854775807.000000\n"), Form::floating);
    EXPECT_EQ(formOf("\"a b\""), Form::quoted);
    EXPECT_EQ(formOf("true\n"), Form::yes);
    EXPECT_EQ(formOf("false\n"), Form::no);
    EXPECT_EQ(formOf("NULL\n"), Form::null);
}

TEST(PlainScanner, LeavesATokenAtTheEndOfTheWindow) {
    for (const char* text : {"12", "1.5", "true", "\"a", "-", ""}) {
        EXPECT_EQ(formOf(text), std::nullopt) << text;
    }
}

TEST(PlainScanner, CountsTheLineEndsThatItSkips) {
    const Window window(" \t\n\f\r\n\r", 0, 7);
    int32_t lineEnds = 5;
    EXPECT_EQ(window.placeOf(PlainScanner::skipLayout(window.begin(), window.end(), lineEnds)), 6U);
    EXPECT_EQ(lineEnds, 8);
}

TEST(PlainScanner, SkipsAnyIndentation) {
    for (std::size_t tabs = 0; tabs < 40; ++tabs) {
        for (const std::string after : {"", "x", " x", "\n\t\t\tx", "  \t\t", "123456789"}) {
            const std::string text = "\n" + std::string(tabs, '\t') + after;
            const Window window(text, 0, text.size());
            int32_t lineEnds = 0;
            const uint8_t* place = PlainScanner::skipLayout(window.begin(), window.end(), lineEnds);
            EXPECT_EQ(window.placeOf(place),
                      std::min(text.find_first_not_of("\n\t "), text.size()));
            EXPECT_EQ(lineEnds, after.starts_with('\n') ? 2 : 1);
        }
    }
}

} // namespace
