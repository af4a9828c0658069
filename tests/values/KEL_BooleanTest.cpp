#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Scalars.h"
#include "support/Watcher.h"
#include "values/KEL_Boolean_Impl.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using kel::test::convertedGuid;
using kel::test::Held;
using kel::test::make;
using kel::test::Watcher;

Held<KEL_Boolean> aBoolean(bool value) {
    return Held<KEL_Boolean>(new KEL_Boolean_Impl(value));
}

TEST(KEL_Boolean, IsOfItsKindAndHoldsItsValue) {
    EXPECT_EQ(aBoolean(true)->getType(), 2);
    EXPECT_TRUE(aBoolean(true)->getValue());
    EXPECT_FALSE(aBoolean(false)->getValue());
}

TEST(KEL_Boolean, ConvertsTo1Or0) {
    EXPECT_TRUE(aBoolean(true)->toBoolean());
    EXPECT_FALSE(aBoolean(false)->toBoolean());
    EXPECT_EQ(aBoolean(true)->toInt(), 1);
    EXPECT_EQ(aBoolean(false)->toInt(), 0);
    EXPECT_EQ(aBoolean(true)->toDouble(), 1.0);
    EXPECT_EQ(aBoolean(false)->toDouble(), 0.0);
    EXPECT_EQ(convertedGuid(*aBoolean(true)), JHashCode(1, 0, 0, 0));
    EXPECT_EQ(convertedGuid(*aBoolean(false)), JHashCode());
}

TEST(KEL_Boolean, TextIsTrueOrFalse) {
    EXPECT_STREQ(aBoolean(true)->toString(), "true");
    EXPECT_STREQ(aBoolean(false)->toString(), "false");
}

TEST(KEL_Boolean, TextFitsABufferOfEightBytes) {
    const Held<KEL_Boolean> value = aBoolean(false);
    const kel::test::AllocationBudget budget(8);
    EXPECT_STREQ(value->toString(), "false");
}

TEST(KEL_Boolean, TextIsWrittenAnewAtEveryCall) {
    const Held<KEL_Boolean> value = aBoolean(false);
    const char* text = value->toString();
    value->setValue(true);
    EXPECT_STREQ(value->toString(), "true");
    EXPECT_EQ(text[5], '\0'); // zero-filled before
    value->freeString();
    EXPECT_STREQ(value->toString(), "true");
}

TEST(KEL_Boolean, SettersConvertByTheRulesOfTheOtherKind) {
    const Held<KEL_Boolean> value = aBoolean(false);
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
