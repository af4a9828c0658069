#include "runtime/JDouble.h"
#include "runtime/JInt128.h"
#include "runtime/JInteger.h"

#include <cmath>
#include <gtest/gtest.h>
#include <kel/JPointer.h>
#include <limits>

namespace {

TEST(JInteger, MinusOneFillsEachNarrowWidth) {
    const JInteger number(-1);
    EXPECT_EQ(number.byteValue(), -1);
    EXPECT_EQ(number.shortValue(), -1);
    EXPECT_EQ(number.intValue(), -1);
    EXPECT_EQ(number.longValue(), -1);
    EXPECT_EQ(number.doubleValue(), -1.0);
    EXPECT_EQ(number.floatValue(), -1.0F);
}

TEST(JInteger, WideResultsExtendWithZeros) {
    const JInteger number(-1);
    EXPECT_EQ(number.int64Value(), JLong64(0xFFFFFFFF, 0));
    EXPECT_EQ(number.int128Value(), JHashCode(0xFFFFFFFF, 0, 0, 0));
}

TEST(JInteger, NarrowResultsAreLowBits) {
    const JInteger number(0x12345680);
    EXPECT_EQ(number.byteValue(), -128);
    EXPECT_EQ(number.shortValue(), 0x5680);
    EXPECT_EQ(JInteger(0x18000).shortValue(), -32768);
}

TEST(JInteger, FloatHasThePrecisionOfTheConversion) {
    EXPECT_EQ(JInteger(16777217).floatValue(), 16777216.0F);
    EXPECT_EQ(JInteger(16777217).doubleValue(), 16777217.0);
}

TEST(JDouble, TruncatesTowardZero) {
    EXPECT_EQ(JDouble(-2.7).intValue(), -2);
    EXPECT_EQ(JDouble(2.7).longValue(), 2);
    EXPECT_EQ(JDouble(-0.9).intValue(), 0);
}

TEST(JDouble, NarrowResultsAreLowBitsOfTheTruncation) {
    EXPECT_EQ(JDouble(300.9).byteValue(), 44);
    EXPECT_EQ(JDouble(65537.5).shortValue(), 1);
}

TEST(JDouble, GivesLowBitsOfA64BitTruncation) {
    EXPECT_EQ(JDouble(4294967303.5).intValue(), 7);
    EXPECT_EQ(JDouble(-4294967303.5).intValue(), -7);
    EXPECT_EQ(JDouble(2147483648.0).intValue(), INT32_MIN);
}

TEST(JDouble, WhatDoesNotFit64BitsIsZero) {
    for (const double value : {9223372036854775808.0, -9223372036854777856.0, 1e300, -1e300}) {
        EXPECT_EQ(JDouble(value).intValue(), 0) << value;
    }
    EXPECT_EQ(kel::truncateToInt32(9223372036854774784.0), -1024);
    EXPECT_EQ(kel::truncateToInt32(-9223372036854775808.0), 0);
}

TEST(JDouble, NanAndInfinityAreIntegerZero) {
    EXPECT_EQ(JDouble(std::nan("")).intValue(), 0);
    EXPECT_EQ(JDouble(std::numeric_limits<double>::infinity()).intValue(), 0);
    EXPECT_EQ(JDouble(-std::numeric_limits<double>::infinity()).byteValue(), 0);
}

TEST(JDouble, WideResultsExtendWithZeros) {
    EXPECT_EQ(JDouble(-1.5).int64Value(), JLong64(0xFFFFFFFF, 0));
    EXPECT_EQ(JDouble(-1.5).int128Value(), JHashCode(0xFFFFFFFF, 0, 0, 0));
}

TEST(JDouble, FloatingResultsAreTheValue) {
    EXPECT_EQ(JDouble(0.1).doubleValue(), 0.1);
    EXPECT_EQ(JDouble(0.1).floatValue(), 0.1F);
}

TEST(JInt128, IntegerResultsSaturateAboveTheLowWord) {
    const JInt128 number(JHashCode(5, 1, 0, 0));
    EXPECT_EQ(number.intValue(), 0x7FFFFFFF);
    EXPECT_EQ(number.longValue(), 0x7FFFFFFF);
    EXPECT_EQ(number.int64Value(), JLong64(0x7FFFFFFF, 0));
}

TEST(JInt128, NarrowResultsNeverSaturate) {
    const JInt128 number(JHashCode(5, 1, 0, 0));
    EXPECT_EQ(number.byteValue(), 5);
    EXPECT_EQ(number.shortValue(), 5);
}

TEST(JInt128, TheLowWordIsTakenAsSigned) {
    const JInt128 number(JHashCode(0x80000000, 0, 0, 0));
    EXPECT_EQ(number.intValue(), INT32_MIN);
    EXPECT_EQ(number.int64Value(), JLong64(0x80000000, 0));
}

TEST(JInt128, FloatingResultsReadTheBits) {
    EXPECT_EQ(JInt128(JHashCode(0, 0x3FF80000, 0, 0)).doubleValue(), 1.5);
    EXPECT_EQ(JInt128(JHashCode(0x3FC00000, 9, 9, 9)).floatValue(), 1.5F);
}

TEST(JInt128, GivesBackAll128Bits) {
    JInt128 number(JHashCode(1, 2, 3, 4));
    const JInt128& constant = number;
    EXPECT_EQ(constant.int128(), JHashCode(1, 2, 3, 4));
    EXPECT_EQ(number.int128(), JHashCode(1, 2, 3, 4));
    EXPECT_EQ(constant.int128Value(), JHashCode(1, 2, 3, 4));
}

// Overrides the constant forms only.
class Seven : public JInteger {
public:
    Seven() : JInteger(0) {}
    int8_t byteValue() const override { return 7; }
    int32_t intValue() const override { return 7; }
    int32_t longValue() const override { return 7; }
    JLong64 int64Value() const override { return JLong64(7); }
    JHashCode int128Value() const override { return JHashCode(7); }
    int16_t shortValue() const override { return 7; }
    double doubleValue() const override { return 7; }
    float floatValue() const override { return 7; }
};

TEST(JNumber, SecondFormsAnswerWhatARedefinedFirstFormAnswers) {
    Seven seven;
    JNumber& number = seven;
    EXPECT_EQ(number.byteValue(), 7);
    EXPECT_EQ(number.intValue(), 7);
    EXPECT_EQ(number.longValue(), 7);
    EXPECT_EQ(number.int64Value(), JLong64(7));
    EXPECT_EQ(number.int128Value(), JHashCode(7));
    EXPECT_EQ(number.shortValue(), 7);
    EXPECT_EQ(number.doubleValue(), 7.0);
    EXPECT_EQ(number.floatValue(), 7.0F);
}

TEST(JNumber, EachNumberHasItsOwnIdentityAndCount) {
    const JPointer<JNumber> one(new JInteger(1));
    const JPointer<JNumber> other(new JInteger(1));
    EXPECT_FALSE(one->equals(other.get()));
    EXPECT_EQ(one->getRefCount(), 1);
}

TEST(JLong64, TextIsTwoZeroPaddedDecimals) {
    EXPECT_EQ(JLong64(0, 0).toDecimalText(), "0000000000000000");
    EXPECT_EQ(JLong64(2, 1).toDecimalText(), "0000000100000002");
    EXPECT_EQ(JLong64(4294967295U, 0).toDecimalText(), "000000004294967295");
}

TEST(JLong64, IntValueIsTheLowWordOrMinusOne) {
    EXPECT_EQ(JLong64(7, 0).intValue(), 7);
    EXPECT_EQ(JLong64(7, 3).intValue(), -1);
    EXPECT_EQ(JLong64(0x80000000U, 0).intValue(), INT32_MIN);
}

TEST(JLong64, AWordIsExtendedWithZeros) {
    EXPECT_EQ(JLong64(0xFFFFFFFFU), JLong64(0xFFFFFFFFU, 0));
    EXPECT_EQ(JLong64(0xFFFFFFFFU).value(), 0xFFFFFFFFULL);
}

TEST(JLong64, HoldsEvery64BitInteger) {
    for (int bit = 0; bit < 64; ++bit) {
        const uint64_t power = 1ULL << bit;
        EXPECT_EQ(JLong64::of(power).value(), power);
        EXPECT_EQ(JLong64::of(power - 1).value(), power - 1);
    }
}

TEST(JLong64, IsEqualWhenBothWordsAre) {
    EXPECT_EQ(JLong64(1, 2), JLong64(1, 2));
    EXPECT_FALSE(JLong64(1, 2) == JLong64(2, 2));
    EXPECT_FALSE(JLong64(1, 2) == JLong64(1, 1));
}

} // namespace
