// Sends random trees through both formats and back.
#include "support/CommaLocale.h"
#include "support/RandomTree.h"
#include "support/SameTree.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

constexpr uint64_t trees = 10000;

/// Returns options for trees that the text format can carry.
constexpr RandomTreeOptions forText() {
    RandomTreeOptions options;
    options.memBlocks = options.quotes = options.anyDoubles = false;
    return options;
}

/// Returns options for trees that the binary format can carry.
constexpr RandomTreeOptions forBinary() {
    RandomTreeOptions options;
    options.guids = options.managers = false;
    return options;
}

HeldValue tree(uint64_t seed, const RandomTreeOptions& options) {
    return HeldValue(randomTree(seed, options));
}

TEST(RoundTrip, TextReadAndWrittenAgainIsTheSameText) {
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, forText());
        const std::string text = textOf(value);
        const auto back = read(text);
        ASSERT_EQ(textOf(back), text) << "seed " << seed;
    }
}

TEST(RoundTrip, TextKeepsKindsValuesAndNames) {
    RandomTreeOptions options = forText();
    options.sharing = false; // the text holds a shared value twice
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, options);
        const auto back = read(textOf(value));
        ASSERT_EQ(differenceOf(*value, *back, Kept::inText), "")
            << "seed " << seed << ": " << describe(*value);
    }
}

TEST(RoundTrip, TextKeepsTheIdentitiesOfManagedValues) {
    for (uint64_t seed = 1; seed <= trees / 10; ++seed) {
        const auto first = tree(seed, forText());
        const auto second = tree(seed + trees, forText());
        const auto back = read(textOf(managerOf(first, second)));
        ASSERT_EQ(asManager(back).size(), 2);
        ASSERT_EQ(textOf(asManager(back).getKel(first->identity())), textOf(first));
        ASSERT_EQ(textOf(asManager(back).getKel(second->identity())), textOf(second));
    }
}

TEST(RoundTrip, BinaryKeepsKindsValuesNamesIdentitiesAndSharing) {
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, forBinary());
        const std::string records = binaryOf(value);
        const auto back = readBinary(records);
        ASSERT_EQ(differenceOf(*value, *back, Kept::inBinary), "")
            << "seed " << seed << ": " << describe(*value);
        ASSERT_EQ(binaryOf(back), records) << "seed " << seed;
    }
}

TEST(RoundTrip, BinaryKeepsValuesThatContainThemselves) {
    RandomTreeOptions options = forBinary();
    options.cycles = true;
    for (uint64_t seed = 1; seed <= trees / 5; ++seed) {
        const auto value = tree(seed, options);
        const TakeApart first(value.get());
        const std::string records = binaryOf(value);
        const auto back = readBinary(records);
        const TakeApart second(back.get());
        ASSERT_EQ(differenceOf(*value, *back, Kept::inBinary), "") << "seed " << seed;
        ASSERT_EQ(binaryOf(back), records) << "seed " << seed;
    }
}

TEST(RoundTrip, SeveralRootsShareValuesOverOneStream) {
    for (uint64_t seed = 1; seed <= trees / 10; ++seed) {
        const auto value = tree(seed, forBinary());
        const auto parts = valuesOf(*value);
        KEL_Impl* part = parts[static_cast<size_t>(seed) % parts.size()];
        const auto outer = arrayOf(value, part);
        const std::string records = BinaryOutput().write(part).write(value).write(outer).bytes();
        BinaryInput input(records);
        const auto firstBack = input.read();
        const auto secondBack = input.read();
        const auto all = arrayWith(codeOf(1), firstBack, secondBack, input.read());
        const auto expected = arrayWith(codeOf(1), part, value, outer);
        ASSERT_EQ(differenceOf(*expected, *all, Kept::inBinary), "") << "seed " << seed;
    }
}

TEST(RoundTrip, BothFormatsAgree) {
    RandomTreeOptions options = forText();
    options.guids = options.managers = false;
    for (uint64_t seed = 1; seed <= trees; ++seed) {
        const auto value = tree(seed, options);
        const std::string text = textOf(value);
        ASSERT_EQ(textOf(readBinary(binaryOf(value))), text) << "seed " << seed;
        ASSERT_EQ(textOf(readBinary(binaryOf(read(text)))), text) << "seed " << seed;
    }
}

TEST(RoundTrip, BothFormatsAgreeInEveryLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    for (uint64_t seed = 1; seed <= trees / 10; ++seed) {
        const auto value = tree(seed, forText());
        const std::string text = textOf(value);
        ASSERT_EQ(rewritten(text), text) << "seed " << seed;
    }
}

TEST(RoundTrip, EveryDoubleThatTheTextCarriesComesBackAsItWas) {
    RandomNumbers numbers(1);
    for (int i = 0; i < 200000; ++i) {
        const double value = randomDouble(numbers, false);
        const std::string text = textOf(doubleOf(value));
        ASSERT_EQ(rewritten(text), text) << value;
    }
}

TEST(RoundTrip, AnyNameIsKeptByBothFormats) {
    RandomNumbers numbers(2);
    for (int i = 0; i < 20000; ++i) {
        const std::string name = randomName(numbers);
        const auto value = structOf(name.c_str(), intOf(i));
        ASSERT_TRUE(asStruct(read(textOf(value))).containsVar(name.c_str())) << name;
        ASSERT_TRUE(asStruct(readBinary(binaryOf(value))).containsVar(name.c_str())) << name;
    }
}

} // namespace
