// The text reader reads every text as it does when it reads token by token, wherever the pieces of
// its stream end.
#include "serial/text/TextTreeReader.h"
#include "support/Bytes.h"
#include "support/PieceStream.h"
#include "support/RandomTree.h"
#include "support/SameTree.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace kel::test;

namespace {

/// A stream of a text, read root value by root value.
class Reading {
public:
    Reading(const std::string& text, int32_t largestPiece, bool seekable, bool literally)
        : source_(streamOf(text, largestPiece, seekable)) {
        source_.readLiterally(literally);
    }

    /// Returns the next root value; null for the word null or a failure.
    Held<KEL_Impl> next() {
        failure_.clear();
        try {
            return Held<KEL_Impl>(kel::TextTreeReader(source_, known_).read());
        } catch (KELException* failure) {
            hasEnded_ = dynamic_cast<KELEOFException*>(failure) != nullptr;
            failure_ = messageAndRelease(failure);
        } catch (const JException& failure) {
            hasEnded_ = true;
            failure_ = messageOf(failure);
        }
        return Held<KEL_Impl>();
    }

    bool hasEnded() const { return hasEnded_; }
    const std::string& failure() const { return failure_; }
    int64_t place() { return source_.input().position(); }

private:
    static JPointer<JInputStream> streamOf(const std::string& text, int32_t largestPiece,
                                           bool seekable) {
        auto* stream = new PieceStream(text);
        stream->largestPiece = largestPiece;
        stream->seekable = seekable;
        return JPointer<JInputStream>(stream);
    }

    kel::TextSource source_;
    kel::ValueTable known_;
    std::string failure_;
    bool hasEnded_ = false;
};

std::string difference(const KEL_Impl* a, const KEL_Impl* b) {
    if (a == nullptr || b == nullptr) {
        return a == b ? "" : "only one is null";
    }
    return differenceOf(*a, *b, Kept::inText);
}

/// Reads the whole text both ways. \return the number of values and failures
int compare(const std::string& text, int32_t largestPiece, bool seekable) {
    Reading literal(text, INT32_MAX, true, true);
    Reading plain(text, largestPiece, seekable, false);
    int count = 0;
    for (; !literal.hasEnded() && !testing::Test::HasFailure(); ++count) {
        const Held<KEL_Impl> expected = literal.next();
        const Held<KEL_Impl> got = plain.next();
        EXPECT_EQ(difference(expected.get(), got.get()), "") << hex(text);
        EXPECT_EQ(plain.failure(), literal.failure()) << hex(text);
        EXPECT_EQ(plain.place(), literal.place()) << hex(text);
        EXPECT_EQ(plain.hasEnded(), literal.hasEnded()) << hex(text);
    }
    return count;
}

/// Texts that people write but the writer does not.
const std::vector<std::string>& oddities() {
    static const std::vector<std::string> texts = {
        "#define A [ 1 x = 2.5 ]\n",
        "#define B { k = 1 \"l\" = true }\n",
        "#define C 12345678\n",
        " A ",
        " B ",
        " C ",
        "3F2504E0-4F89-11D3-9A0C-0305E82C3301",
        "12345678-4F89-11D3-9A0C-0305E82C3301 = ",
        " REF 12345678-4F89-11D3-9A0C-0305E82C3301",
        "{ @type = 50, ",
        "{ @type = 8 ",
        "{@hashCode = 3F2504E0-4F89-11D3-9A0C-0305E82C3301, ",
        "{",
        "[",
        "]",
        "}",
        "(",
        ")",
        "<[1 2] ",
        ">",
        "\"",
        "\"a\nb\" ",
        "/* c \n */",
        "// c\n",
        "\r\n",
        "\r",
        "\f",
        "-",
        "x",
        ".",
        "0x1F ",
        "null ",
        "@type = 5 ",
        " = ",
        "1.2.3",
        bytes("\0"),
        "\xFF",
        "-12345678901234567890123456789012 ",
        "4294967297 "};
    return texts;
}

std::string randomDocument(uint64_t seed) {
    RandomNumbers numbers(seed);
    RandomTreeOptions options;
    options.quotes = numbers.once(8);
    options.memBlocks = numbers.once(8);
    options.metas = options.lists = numbers.once(3);
    options.maxValues = 12;
    std::string text;
    for (int roots = 1 + numbers.below(3); roots > 0; --roots) {
        const HeldValue tree(randomTree(numbers.next(), options));
        text += textOf(tree);
    }
    for (int changes = numbers.below(4); changes > 0; --changes) {
        const auto place = static_cast<std::size_t>(numbers.below(text.size() + 1));
        if (numbers.once(4)) {
            text.erase(place, static_cast<std::size_t>(numbers.below(6)));
        } else {
            text.insert(place,
                        oddities()[static_cast<std::size_t>(numbers.below(oddities().size()))]);
        }
    }
    return text;
}

TEST(PlainText, EveryTextIsReadAsTokenByToken) {
    int count = 0;
    for (uint64_t seed = 1; seed <= 4000; ++seed) {
        RandomNumbers numbers(seed);
        const std::string text = randomDocument(seed);
        count += compare(text, 1 + numbers.below(200), !numbers.once(4));
        ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << text;
    }
    EXPECT_GT(count, 8000);
}

TEST(PlainText, APieceOfTheStreamCanEndAnywhere) {
    const std::string text = "{\n\ta = [\n\t\t1\n\t\t-2.500000\n\t\t\"s t\"\n\t]\r\n"
                             "\t\"my key\" = NULL\n\tn = { x = true y=false } z = null\n\t}\n"
                             "[ #define N 7\n N 12345678-4F89-11D3-9A0C-0305E82C3302\n [] {} ] 5";
    for (int32_t piece = 1; piece < static_cast<int32_t>(text.size()); ++piece) {
        for (const bool seekable : {true, false}) {
            compare(text, piece, seekable);
        }
    }
}

TEST(PlainText, EveryBeginningOfATextIsReadAsTokenByToken) {
    const std::string text = "{\n\ta = [\n\t\t1\n\t\t-2.500000\n\t\t\"s\"\n\t]\n\t\"k\" = NULL\n"
                             "\tb = true\n\tc = { d = 0x1f }\n}\n";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        compare(text.substr(0, length), INT32_MAX, true);
        compare(text.substr(0, length) + "?", INT32_MAX, true);
    }
}

TEST(PlainText, NothingAfterTheValueIsTakenFromAPipe) {
    auto* stream = new PieceStream("{ a = [ 1 2 ] }[ \"x\" ]rest");
    stream->seekable = false;
    TextInput input(stream);
    input.read();
    EXPECT_EQ(stream->place, 15);
    input.read();
    EXPECT_EQ(stream->place, 22);
}

} // namespace
