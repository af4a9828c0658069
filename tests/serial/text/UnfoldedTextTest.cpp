// The limit on texts that repeat shared values and indent deep ones.
#include "serial/text/UnfoldedText.h"

#include "support/FailingSink.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;
using kel::UnfoldedText;

namespace {

const std::string tooLong = "Cannot write a text that repeats so much.";

UnfoldedText measured(const HeldValue& value, std::size_t tabs = 0) {
    return UnfoldedText(*value, tabs, true);
}

TEST(UnfoldedText, IsAtLeastAsLongAsTheText) {
    const auto shared = arrayOf(intOf(1), stringOf(std::string(1000, 's')));
    const HeldValue values[] = {
        intOf(INT32_MIN),
        booleanOf(false),
        doubleOf(-1e11),
        doubleOf(-1.7e308),
        guidOf(codeOf(1)),
        memBlockOf("bytes"),
        stringOf(""),
        stringOf(std::string(1000, 's')),
        arrayOf(),
        arrayOf(shared, shared, arrayOf(shared)),
        structOf("a", intOf(1), "a name in quotes", nullptr, "b", structOf("c", shared)),
        managerOf(intOf(1), shared),
        HeldValue(nestedMixed(100)),
        HeldValue(doublingChain(10)),
        HeldValue(chainOfInnerStructs(8)),
    };
    for (const HeldValue& value : values) {
        const std::string text = textOf(value);
        EXPECT_GE(measured(value).whole(), text.size()) << text.substr(0, 40);
        EXPECT_LE(measured(value).whole(), 4 * text.size() + 50) << text.substr(0, 40);
    }
}

TEST(UnfoldedText, CountsEveryPlaceOfASharedValueAndFoldedOnlyOne) {
    const auto once = HeldValue(doublingChain(1));
    const auto often = HeldValue(doublingChain(20));
    EXPECT_GT(measured(often).whole(), uint64_t{1} << 21);
    EXPECT_LT(measured(often).folded(), 40 * measured(once).folded());
}

TEST(UnfoldedText, CountsEveryPlaceOfALongString) {
    const auto text = stringOf(std::string(100000, 's'));
    const auto value = arrayOf(text, text, text);
    EXPECT_GT(measured(value).whole(), 300000U);
    EXPECT_LT(measured(value).folded(), 110000U);
}

TEST(UnfoldedText, CountsTheBytesOfABlockOnlyIfTheyAreShown) {
    const auto block = memBlockOf(std::string(100000, 'b'));
    const auto value = arrayOf(block, block, block);
    EXPECT_GT(UnfoldedText(*value, 0, true).whole(), 300000U);
    EXPECT_LT(UnfoldedText(*value, 0, false).whole(), 300U);
}

TEST(UnfoldedText, IsIndentedAsAWhole) {
    const auto value = arrayOf(intOf(1), intOf(2));
    EXPECT_EQ(measured(value, 1000).whole(), measured(value).whole() + 4000);
    EXPECT_TRUE(measured(value, SIZE_MAX).isTooLong());
}

TEST(UnfoldedText, ItsSizeHasALimitAndItsTimeIsLinear) {
    const auto value = HeldValue(doublingChain(1000));
    EXPECT_EQ(measured(value).whole(), uint64_t{1} << 62);
    EXPECT_TRUE(measured(value).isTooLong());
    EXPECT_TRUE(measured(HeldValue(chainOfInnerStructs(1000))).isTooLong());
}

TEST(UnfoldedText, AValueInsideItselfIsNotCountedAgain) {
    const auto rings = ring(3);
    const TakeApart end(rings[0].get());
    EXPECT_FALSE(UnfoldedText(*rings[0], 0, false).isTooLong());
}

TEST(UnfoldedText, TheAllowanceGrowsWithTheValues) {
    const auto text = stringOf(std::string(10'000'000, 's'));
    auto value = arrayOf();
    for (int i = 0; i < 60; ++i) {
        asArray(value).addVar(text.get()); // 600 MB
    }
    EXPECT_FALSE(measured(value).isTooLong());
    for (int i = 0; i < 60; ++i) {
        asArray(value).addVar(text.get());
    }
    EXPECT_TRUE(measured(value).isTooLong());
}

// ---- The writer --------------------------------------------------------------------------------

/// Writes a value to a sink that it keeps.
struct Written {
    explicit Written(const HeldValue& value)
        : stream(new KELTextOutputStream_Impl(JPointer<JOutputStream>::share(sink.get()))) {
        message = thrownMessage<KELIOException>([&] { stream->write(value.get()); });
    }

    JPointer<FailingSink> sink{new FailingSink};
    JPointer<KELTextOutputStream_Impl> stream;
    std::string message;
};

TEST(TextLimit, NothingIsWrittenOfAValueThatUnfoldsTooFar) {
    const HeldValue values[] = {
        HeldValue(doublingChain(40)), HeldValue(chainOfInnerStructs(40)),
        HeldValue(nestedArrays(20000)), // the indentation alone takes 400 million characters
    };
    for (const HeldValue& value : values) {
        const Written written(value);
        EXPECT_EQ(written.message, tooLong);
        EXPECT_EQ(written.sink->writes, 0);
    }
}

TEST(TextLimit, ALongStringInManyPlacesIsRefused) {
    const auto text = stringOf(std::string(1'000'000, 's'));
    auto value = arrayOf();
    for (int i = 0; i < 1000; ++i) {
        asArray(value).addVar(text.get());
    }
    const Written written(value);
    EXPECT_EQ(written.message, tooLong);
    EXPECT_EQ(written.sink->writes, 0);
}

TEST(TextLimit, OnlyTheTextBeforeTheFirstSharedValueCanRemain) {
    auto value = arrayOf();
    std::string before = "[\n";
    for (int i = 0; i < 10000; ++i) {
        asArray(value).addInt(i);
        before += "\t" + std::to_string(i) + "\n";
    }
    asArray(value).addVar(HeldValue(doublingChain(40)).get());
    const Written written(value);
    EXPECT_EQ(written.message, tooLong);
    EXPECT_EQ(written.sink->bytes.substr(0, before.size()), before);
    EXPECT_LT(written.sink->bytes.size(), before.size() + 1000);
}

TEST(TextLimit, TheStreamWritesOn) {
    const Written written(HeldValue(doublingChain(40)));
    written.stream->write(intOf(5).get());
    EXPECT_EQ(written.sink->bytes, "5\n");
}

TEST(TextLimit, AValueThatContainsItselfIsStillCalledThat) {
    const auto rings = ring(3);
    const TakeApart end(rings[0].get());
    rings[0]->addVar(HeldValue(doublingChain(12)).get());
    const auto value = arrayOf(HeldValue(doublingChain(12)), rings[0].get());
    EXPECT_EQ(Written(value).message, "Cannot write a value that contains itself.");
}

} // namespace
