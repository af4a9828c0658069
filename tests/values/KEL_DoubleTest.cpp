#include "support/CommaLocale.h"
#include "support/Held.h"
#include "support/Scalars.h"
#include "support/Watcher.h"
#include "values/KEL_Double_Impl.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using kel::test::convertedGuid;
using kel::test::Held;
using kel::test::infinity;
using kel::test::make;
using kel::test::Watcher;

Held<KEL_Double> aDouble(double value) {
    return Held<KEL_Double>(new KEL_Double_Impl(value));
}

TEST(KEL_Double, IsOfItsKindAndHoldsItsValue) {
    EXPECT_EQ(aDouble(2.5)->getType(), 3);
    EXPECT_EQ(aDouble(2.5)->getValue(), 2.5);
    EXPECT_TRUE(std::signbit(aDouble(-0.0)->getValue()));
    EXPECT_TRUE(std::isnan(aDouble(std::nan(""))->getValue()));
}

TEST(KEL_Double, IsTrueOnlyForExactly1) {
    EXPECT_TRUE(aDouble(1.0)->toBoolean());
    EXPECT_FALSE(aDouble(0.5)->toBoolean());
    EXPECT_FALSE(aDouble(0.0)->toBoolean());
    EXPECT_FALSE(aDouble(-1.0)->toBoolean());
    EXPECT_FALSE(aDouble(2.0)->toBoolean());
    EXPECT_FALSE(aDouble(std::nan(""))->toBoolean());
}

TEST(KEL_Double, TruncatesTowardZero) {
    EXPECT_EQ(aDouble(-7.9)->toInt(), -7);
    EXPECT_EQ(aDouble(7.9)->toInt(), 7);
    EXPECT_EQ(aDouble(-0.9)->toInt(), 0);
}

TEST(KEL_Double, IsAnIntThrough64Bits) {
    EXPECT_EQ(aDouble(2147483648.0)->toInt(), INT32_MIN);
    EXPECT_EQ(aDouble(4294967303.5)->toInt(), 7);
    EXPECT_EQ(aDouble(-4294967303.5)->toInt(), -7);
}

TEST(KEL_Double, IsZeroAsAnIntBeyond64BitsAndWithoutANumber) {
    for (const double value : {9223372036854775808.0, -9223372036854777856.0, 1e300, infinity,
                               -infinity, std::nan("")}) {
        EXPECT_EQ(aDouble(value)->toInt(), 0) << value;
    }
    EXPECT_EQ(aDouble(-9223372036854775808.0)->toInt(), 0); // fits; its low 32 bits are 0
}

TEST(KEL_Double, IsAnIntAtEveryPowerOfTwo) {
    for (int bit = 0; bit < 63; ++bit) {
        const auto low = static_cast<int32_t>(static_cast<uint32_t>(uint64_t{1} << bit));
        ASSERT_EQ(aDouble(std::ldexp(1.0, bit))->toInt(), low) << bit;
        ASSERT_EQ(aDouble(-std::ldexp(1.0, bit))->toInt(),
                  static_cast<int32_t>(0U - static_cast<uint32_t>(low)));
    }
}

TEST(KEL_Double, HasTheUsualWidthsOfC) {
    const Held<KEL_Double> value = aDouble(-129.9);
    EXPECT_EQ(value->toSignedChar(), 127);
    EXPECT_EQ(value->toUnsignedChar(), 127);
    EXPECT_EQ(value->toShort(), -129);
    EXPECT_EQ(value->toUnsignedShort(), 65407);
    EXPECT_EQ(value->toUnsignedInt(), 4294967167U);
    EXPECT_EQ(value->toLong(), -129);
    EXPECT_EQ(value->toInt64(), -129);
    EXPECT_EQ(value->toUnsignedInt64(), 18446744073709551487U);
    EXPECT_EQ(value->toFloat(), -129.9F);
    EXPECT_EQ(value->toLongDouble(), static_cast<long double>(-129.9));
}

TEST(KEL_Double, WiderIntegersAreTheIntToo) {
    EXPECT_EQ(aDouble(4294967303.0)->toInt64(), 7);
    EXPECT_EQ(aDouble(4294967303.0)->toLong(), 7);
}

TEST(KEL_Double, TextHasSixDecimals) {
    EXPECT_STREQ(aDouble(2.5)->toString(), "2.500000");
    EXPECT_STREQ(aDouble(-0.0)->toString(), "-0.000000");
    EXPECT_STREQ(aDouble(1e-7)->toString(), "0.000000");
}

TEST(KEL_Double, TextOfTheLargestFits) {
    const Held<KEL_Double> value = aDouble(-std::numeric_limits<double>::max());
    EXPECT_EQ(std::string(value->toString()).size(), 317U);
}

TEST(KEL_Double, TextOfInfinitiesAndNansIsTheirName) {
    EXPECT_STREQ(aDouble(infinity)->toString(), "inf");
    EXPECT_STREQ(aDouble(-infinity)->toString(), "-inf");
    EXPECT_STREQ(aDouble(std::copysign(std::nan(""), 1.0))->toString(), "nan");
    EXPECT_STREQ(aDouble(std::copysign(std::nan(""), -1.0))->toString(), "-nan");
}

TEST(KEL_Double, TextIsTheSameInEveryLocale) {
    const kel::test::CommaLocale comma;
    KEL_NEED(comma);
    EXPECT_STREQ(aDouble(1234.5)->toString(), "1234.500000");
    EXPECT_EQ(aDouble(0.0)->setString("1.5")->getValue(), 1.5);
}

TEST(KEL_Double, GuidHoldsTheIntegerInItsLowestWord) {
    EXPECT_EQ(convertedGuid(*aDouble(7.9)), JHashCode(7, 0, 0, 0));
    EXPECT_EQ(convertedGuid(*aDouble(-1.5)), JHashCode(0xFFFFFFFFU, 0, 0, 0));
}

TEST(KEL_Double, SettersConvertAndReturnTheValueItself) {
    const Held<KEL_Double> value = aDouble(0.0);
    EXPECT_EQ(value->setDouble(2.5), value.get());
    EXPECT_EQ(value->setBoolean(true)->getValue(), 1.0);
    EXPECT_EQ(value->setBoolean(false)->getValue(), 0.0);
    EXPECT_EQ(value->setInt(-7)->getValue(), -7.0);
    EXPECT_EQ(value->setString("2.5e1x")->getValue(), 25.0);
    EXPECT_EQ(value->setguid(JHashCode(5, 1, 0, 0))->getValue(), 2147483647.0);
}

TEST(KEL_Double, SetFromTextWithoutANumberIs0AndFromNullIsNoChange) {
    const Held<KEL_Double> value = aDouble(2.5);
    EXPECT_EQ(value->setString(nullptr)->getValue(), 2.5);
    EXPECT_EQ(value->setString("inf")->getValue(), 0.0);
}

} // namespace
