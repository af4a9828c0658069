// The scanner and the machines agree on random texts, token by token.
#include "runtime/JDouble.h"
#include "runtime/JInt128.h"
#include "runtime/JInteger.h"
#include "serial/tokens/Fraction.h"
#include "serial/tokens/StreamTokenizer.h"
#include "support/Bytes.h"
#include "support/PieceStream.h"

#include <array>
#include <bit>
#include <chrono>
#include <gtest/gtest.h>
#include <iostream>
#include <random>
#include <string>

namespace {

constexpr uint32_t seed = 20240611;

class RandomTexts {
public:
    std::string next() {
        std::string text;
        const size_t pieces = 1 + below(8);
        for (size_t i = 0; i < pieces; ++i) {
            text += below(3) == 0 ? fragment() : characters();
        }
        return text;
    }

    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

private:
    std::string characters() {
        static const std::string alphabet =
            bytes("\"\"//**---0123456789abcdefABCDEFxXgz..\r\n\f@_  \t\0\xFF={[");
        std::string out;
        for (uint32_t i = below(5); i > 0; --i) {
            out += alphabet[below(static_cast<uint32_t>(alphabet.size()))];
        }
        return out;
    }

    std::string fragment() {
        switch (below(8)) {
        case 0:
            return guid();
        case 1:
            return between("/*", characters(), "*/");
        case 2:
            return between("//", characters(), "\n");
        case 3:
            return between("\"", characters(), "\"");
        case 4:
            return between("", digits(1 + below(12)), ".") + digits(below(20));
        case 5:
            return between("-", digits(30 + below(4)), "");
        case 6:
            return between("0x", digits(below(10)), "");
        default:
            return std::string(below(5), '*') + "/";
        }
    }

    static std::string between(const char* before, const std::string& text, const char* after) {
        return std::string(before).append(text).append(after);
    }

    // Returns a guid, in most cases a well-formed one. Some are all decimal, cut, or without
    // dashes.
    std::string guid() {
        const bool decimal = below(3) == 0;
        const bool dashed = below(4) != 0;
        std::string out;
        for (uint32_t i = below(12) == 0 ? below(32) : 32; i > 0; --i) {
            out += "0123456789abcdefABCDEF"[below(decimal ? 10 : 22)];
            if (dashed && (i == 25 || i == 21 || i == 17 || i == 13)) {
                out += '-';
            }
        }
        return out;
    }

    std::string digits(uint32_t count) {
        std::string out;
        for (; count > 0; --count) {
            out += static_cast<char>('0' + below(10));
        }
        return out;
    }

    std::mt19937 random_{seed};
};

// A token, and the position of the input after it.
struct Seen {
    int32_t type = 0;
    int32_t integer = 0;
    uint64_t floatingBits = 0;
    bool quoted = false;
    std::string text;
    JHashCode hashCode;
    std::string failure;
    int32_t raw = 0; // the character after a place where nothing matches
    int64_t start = 0;
    int64_t behind = 0;
    bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& seen) {
    char guid[JHashCode::guidTextLength + 1];
    seen.hashCode.toGuidText(guid);
    return out << "type " << seen.type << ", " << seen.integer << ", bits " << seen.floatingBits
               << (seen.quoted ? ", quoted " : ", bare ") << hex(seen.text) << ", " << guid
               << ", threw \"" << seen.failure << "\", raw " << seen.raw << ", from " << seen.start
               << " to " << seen.behind;
}

std::string messageOf(const TokenizerException& failure) {
    return JPointer<JString>(failure.getMessage())->chars();
}

bool isText(const JObject* value, const kel::Token& token) {
    const auto* text = dynamic_cast<const JString*>(value);
    return text != nullptr && text->isQuoted() == token.quoted &&
           std::string_view(text->chars(), token.text.size()) == token.text;
}

// Returns whether the value object holds the same value as the plain token.
bool valueMatches(StreamTokenizer& tokenizer) {
    const kel::Token& token = tokenizer.token();
    const JPointer<JObject> value = tokenizer.getValue();
    switch (token.type) {
    case kel::tokenInteger:
        return dynamic_cast<const JInteger&>(*value).intValue() == token.integer;
    case kel::tokenFloating:
        return std::bit_cast<uint64_t>(dynamic_cast<const JDouble&>(*value).doubleValue()) ==
               std::bit_cast<uint64_t>(token.floating);
    case kel::tokenHashCode:
        return dynamic_cast<const JInt128&>(*value).int128Value() == token.hashCode;
    default:
        return isText(value.get(), token);
    }
}

// A tokenizer that consumes one raw character where nothing matches.
class Walk {
public:
    Walk(JPointer<JInputStream> input, bool literal) : tokenizer_(input) {
        tokenizer_.addStandardRecognisers();
        tokenizer_.askRecognisersOnly(literal);
    }

    Seen next() {
        Seen seen;
        try {
            seen.type = tokenizer_.nextToken();
            ended_ = seen.type == kel::tokenEnd;
        } catch (const TokenizerException& failure) {
            seen.failure = messageOf(failure);
            ended_ = true;
        }
        const kel::Token& token = tokenizer_.token();
        seen.integer = token.integer;
        seen.floatingBits = std::bit_cast<uint64_t>(token.floating);
        seen.quoted = token.quoted;
        seen.text = token.text;
        seen.hashCode = token.hashCode;
        seen.start = tokenizer_.tokenStart();
        seen.behind = tokenizer_.input().position();
        if (seen.type > kel::tokenNewline) {
            EXPECT_TRUE(valueMatches(tokenizer_)) << seen;
        } else if (ended_) {
            EXPECT_EQ(valueFailure(), "Error reading tokens") << seen;
        } else if (seen.type == kel::tokenNone) {
            seen.raw = tokenizer_.nextRaw();
        }
        return seen;
    }

    bool hasEnded() const { return ended_; }

private:
    std::string valueFailure() {
        try {
            tokenizer_.getValue();
        } catch (const TokenizerException& failure) {
            return messageOf(failure);
        }
        return "(a value)";
    }

    StreamTokenizer tokenizer_;
    bool ended_ = false;
};

JPointer<JInputStream> streamOf(const std::string& text, int32_t largestPiece, bool seekable) {
    auto* stream = new PieceStream(text);
    stream->largestPiece = largestPiece;
    stream->seekable = seekable;
    return JPointer<JInputStream>(stream);
}

// Compares the scanner and the machines token by token. \return the number of tokens
int compare(const std::string& text, int32_t largestPiece, bool seekable) {
    Walk machines(streamOf(text, INT32_MAX, true), true);
    Walk scanner(streamOf(text, largestPiece, seekable), false);
    int count = 0;
    for (; !machines.hasEnded(); ++count) {
        const Seen expected = machines.next();
        const Seen got = scanner.next();
        EXPECT_EQ(got, expected) << "in " << hex(text);
        if (!(got == expected)) {
            break;
        }
    }
    EXPECT_EQ(scanner.hasEnded(), machines.hasEnded()) << "in " << hex(text);
    return count;
}

TEST(StandardScanner, AgreesWithTheMachinesOnRandomTexts) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(2);
    RandomTexts texts;
    std::array<int64_t, 2> done{};
    while (done[0] < 300000 && (done[0] % 64 != 0 || Clock::now() < end)) {
        const std::string text = texts.next();
        const auto largestPiece = static_cast<int32_t>(1 + texts.below(40));
        done[1] += compare(text, largestPiece, texts.below(4) != 0);
        ++done[0];
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ", text " << done[0];
    }
    std::cout << "seed " << seed << ": " << done[0] << " texts, " << done[1] << " tokens\n";
    EXPECT_GT(done[0], 1000);
}

TEST(StandardScanner, AgreesAtEveryLengthOfEveryFragment) {
    const std::string sample =
        bytes("{ @type = 51 // c\r\n\tkey9=\"a\0b\"-12.5/* *x**/ ***/0x1f 007 -0 .5.5 "
              "3F2504E0-4F89-11D3-9A0C-0305E82C3301 12345678-4F89-11D3-9A0C-0305E82C3301 "
              "-12345678901234567890123456789012 abc-1 a@b\f\r");
    for (size_t from = 0; from < sample.size(); ++from) {
        for (size_t length = 0; length <= sample.size() - from && length < 60; ++length) {
            compare(sample.substr(from, length), 3, true);
        }
    }
}

TEST(StandardScanner, AgreesOnEveryPairOfBytes) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            compare({static_cast<char>(first), static_cast<char>(second)}, 1, true);
        }
        ASSERT_FALSE(HasFailure());
    }
}

TEST(StandardScanner, FractionsAreBitIdenticalAtEveryLength) {
    std::mt19937 random{seed};
    std::string text = "1.";
    for (int i = 0; i < 400; ++i) {
        text += static_cast<char>('0' + random() % 10);
        compare(text, INT32_MAX, true);
    }
}

TEST(StandardScanner, TheWeightsAreRepeatedTenths) {
    double weight = 0.1;
    for (const double entry : kel::fractionWeights) {
        EXPECT_EQ(entry, weight);
        weight = weight * 0.1;
    }
}

} // namespace
