#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Watcher.h"
#include "values/KEL_Boolean_Impl.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::Watcher;

Held<KEL_Boolean> of(bool value) {
    return Held<KEL_Boolean>(new KEL_Boolean_Impl(value));
}

JHashCode guidOf(const KEL& value) {
    JHashCode guid(9, 9, 9, 9);
    return value.toGuid(guid);
}

TEST(KEL_Boolean, IsOfItsKindAndHoldsItsValue) {
    EXPECT_EQ(of(true)->getType(), 2);
    EXPECT_TRUE(of(true)->getValue());
    EXPECT_FALSE(of(false)->getValue());
}

TEST(KEL_Boolean, ConvertsTo1Or0) {
    EXPECT_TRUE(of(true)->toBoolean());
    EXPECT_FALSE(of(false)->toBoolean());
    EXPECT_EQ(of(true)->toInt(), 1);
    EXPECT_EQ(of(false)->toInt(), 0);
    EXPECT_EQ(of(true)->toDouble(), 1.0);
    EXPECT_EQ(of(false)->toDouble(), 0.0);
    EXPECT_EQ(guidOf(*of(true)), JHashCode(1, 0, 0, 0));
    EXPECT_EQ(guidOf(*of(false)), JHashCode());
}

TEST(KEL_Boolean, TextIsTrueOrFalse) {
    EXPECT_STREQ(of(true)->toString(), "true");
    EXPECT_STREQ(of(false)->toString(), "false");
}

TEST(KEL_Boolean, TextFitsABufferOfEightBytes) {
    const Held<KEL_Boolean> value = of(false);
    const kel::test::AllocationBudget budget(8);
    EXPECT_STREQ(value->toString(), "false");
}

TEST(KEL_Boolean, TextIsWrittenAnewAtEveryCall) {
    const Held<KEL_Boolean> value = of(false);
    const char* text = value->toString();
    value->setValue(true);
    EXPECT_STREQ(value->toString(), "true");
    EXPECT_EQ(text[5], '\0'); // zero-filled before
    value->freeString();
    EXPECT_STREQ(value->toString(), "true");
}

TEST(KEL_Boolean, SettersConvertByTheRulesOfTheOtherKind) {
    const Held<KEL_Boolean> value = of(false);
    EXPECT_TRUE(value->setBoolean(true)->getValue());
    EXPECT_TRUE(value->setInt(1)->getValue());
    EXPECT_FALSE(value->setInt(2)->getValue());
    EXPECT_TRUE(value->setDouble(1.0)->getValue());
    EXPECT_FALSE(value->setDouble(0.5)->getValue());
    EXPECT_TRUE(value->setString("false")->getValue());
    EXPECT_FALSE(value->setString("")->getValue());
    EXPECT_TRUE(value->setguid(JHashCode(0, 0, 0, 1))->getValue());
    EXPECT_FALSE(value->setguid(JHashCode())->getValue());
}

} // namespace
