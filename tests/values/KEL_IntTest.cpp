#include "support/AllocationFailure.h"
#include "support/CommaLocale.h"
#include "support/Held.h"
#include "support/Scalars.h"
#include "support/Watcher.h"
#include "values/KEL_Int_Impl.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using kel::test::convertedGuid;
using kel::test::Held;
using kel::test::make;
using kel::test::Watcher;

Held<KEL_Int> anInt(int32_t value) {
    return Held<KEL_Int>(new KEL_Int_Impl(value));
}

TEST(KEL_Int, IsOfItsKindAndHoldsItsValue) {
    EXPECT_EQ(anInt(5)->getType(), 1);
    EXPECT_EQ(anInt(5)->getValue(), 5);
    EXPECT_EQ(anInt(INT32_MIN)->getValue(), INT32_MIN);
}

TEST(KEL_Int, IsTrueOnlyForExactly1) {
    EXPECT_TRUE(anInt(1)->toBoolean());
    EXPECT_FALSE(anInt(2)->toBoolean());
    EXPECT_FALSE(anInt(-1)->toBoolean());
    EXPECT_FALSE(anInt(0)->toBoolean());
}

TEST(KEL_Int, IsANumber) {
    EXPECT_EQ(anInt(-7)->toInt(), -7);
    EXPECT_EQ(anInt(-7)->toDouble(), -7.0);
    EXPECT_EQ(anInt(INT32_MIN)->toDouble(), -2147483648.0);
}

TEST(KEL_Int, TextIsDecimal) {
    EXPECT_STREQ(anInt(0)->toString(), "0");
    EXPECT_STREQ(anInt(2147483647)->toString(), "2147483647");
    EXPECT_STREQ(anInt(INT32_MIN)->toString(), "-2147483648");
}

TEST(KEL_Int, TextIsTheSameInEveryLocale) {
    const kel::test::CommaLocale comma;
    KEL_NEED(comma);
    EXPECT_STREQ(anInt(1234567)->toString(), "1234567");
}

TEST(KEL_Int, TextStaysUntilTheNextOrUntilItIsFreed) {
    const Held<KEL_Int> value = anInt(123456);
    const char* first = value->toString();
    value->setValue(7);
    EXPECT_STREQ(first, "123456");
    EXPECT_EQ(value->toString(), first); // the buffer is the same, with new contents
    EXPECT_STREQ(first, "7");
    value->freeString();
    value->freeString();
    EXPECT_STREQ(value->toString(), "7");
}

TEST(KEL_Int, TextIsNullWithoutMemory) {
    const Held<KEL_Int> value = anInt(7);
    {
        const kel::test::FailingAllocation failing(0);
        EXPECT_EQ(value->toString(), nullptr);
    }
    EXPECT_STREQ(value->toString(), "7");
}

TEST(KEL_Int, GuidHoldsTheValueInItsLowestWord) {
    EXPECT_EQ(convertedGuid(*anInt(7)), JHashCode(7, 0, 0, 0));
    EXPECT_EQ(convertedGuid(*anInt(-1)), JHashCode(0xFFFFFFFFU, 0, 0, 0));
}

TEST(KEL_Int, SettersConvertAndReturnTheValueItself) {
    const Held<KEL_Int> value = anInt(5);
    EXPECT_EQ(value->setBoolean(true), value.get());
    EXPECT_EQ(value->getValue(), 1);
    EXPECT_EQ(value->setInt(-3)->getValue(), -3);
    EXPECT_EQ(value->setDouble(-7.9)->getValue(), -7);
    EXPECT_EQ(value->setString("12abc")->getValue(), 12);
    EXPECT_EQ(value->setguid(JHashCode(4))->getValue(), 4);
    EXPECT_EQ(value->setBoolean(false)->getValue(), 0);
}

TEST(KEL_Int, SetFromAGuidTakesItsIntValue) {
    const Held<KEL_Int> value = anInt(5);
    EXPECT_EQ(value->setguid(JHashCode(5, 1, 0, 0))->getValue(), 2147483647);
    EXPECT_EQ(value->setguid(JHashCode(0xFFFFFFFFU))->getValue(), -1);
}

TEST(KEL_Int, SetFromTextTakesTheLeadingIntegerSaturated) {
    const Held<KEL_Int> value = anInt(5);
    EXPECT_EQ(value->setString("abc")->getValue(), 0);
    EXPECT_EQ(value->setString("-99999999999")->getValue(), INT32_MIN);
    EXPECT_EQ(value->setString(nullptr)->getValue(), INT32_MIN);
}

TEST(KEL_Int, SetFromADoubleTakesTheLow32BitsOfItsTruncation) {
    const Held<KEL_Int> value = anInt(5);
    EXPECT_EQ(value->setDouble(4294967303.5)->getValue(), 7);
    EXPECT_EQ(value->setDouble(1e300)->getValue(), 0);
}

} // namespace
