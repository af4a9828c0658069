#include "values/Conversions.h"
#include "meta/KEL_Manager_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using kel::convertToBoolean;
using kel::convertToDouble;
using kel::convertToGuid;
using kel::convertToInt;
using kel::convertToString;
using kel::test::Held;

constexpr double infinity = std::numeric_limits<double>::infinity();

Held<KEL> of(int32_t value) {
    return Held<KEL>(new KEL_Int_Impl(value));
}
Held<KEL> of(bool value) {
    return Held<KEL>(new KEL_Boolean_Impl(value));
}
Held<KEL> of(double value) {
    return Held<KEL>(new KEL_Double_Impl(value));
}
Held<KEL> of(const JHashCode& value) {
    return Held<KEL>(new KEL_guid_Impl(value));
}
Held<KEL> of(const char* value) {
    return Held<KEL>(new KEL_String_Impl(value));
}

template <class T> bool booleanOf(T value) {
    return convertToBoolean(of(value).get());
}
template <class T> int32_t intOf(T value) {
    return convertToInt(of(value).get());
}
template <class T> double doubleOf(T value) {
    return convertToDouble(of(value).get());
}
template <class T> JHashCode guidOf(T value) {
    return convertToGuid(of(value).get());
}

/// Returns the text of the String that the value converts to. Checks that only the caller owns the
/// String.
template <class T> std::string stringOf(T value) {
    const Held<KEL> source = of(value);
    const Held<KEL_String> text(convertToString(source.get()));
    EXPECT_NE(static_cast<KEL*>(text.get()), source.get());
    EXPECT_EQ(kel::test::referencesOf(*text), 1);
    return text->getValue();
}

void expectNeutral(const KEL* value) {
    EXPECT_FALSE(convertToBoolean(value));
    EXPECT_EQ(convertToInt(value), 0);
    EXPECT_EQ(convertToDouble(value), 0.0);
    EXPECT_EQ(convertToGuid(value), JHashCode());
    EXPECT_EQ(convertToString(value), nullptr);
}

TEST(Conversions, NullGivesTheNeutralAnswers) {
    expectNeutral(nullptr);
}

TEST(Conversions, KindsWithoutAScalarFormGiveTheNeutralAnswers) {
    expectNeutral(kel::test::make<KEL_MemBlock_Impl>(8, nullptr).get());
    expectNeutral(kel::test::make<KEL_Array_Impl>().get());
    expectNeutral(kel::test::make<KEL_Struct_Impl>().get());
    expectNeutral(kel::test::make<KEL_Manager_Impl>().get());
}

TEST(Conversions, AnIntIsTrueUnlessItIs0) {
    EXPECT_TRUE(booleanOf(2));
    EXPECT_TRUE(booleanOf(-1));
    EXPECT_TRUE(booleanOf(1));
    EXPECT_FALSE(booleanOf(0));
}

TEST(Conversions, ADoubleIsTrueIfItTruncatesTo0) {
    EXPECT_TRUE(booleanOf(0.5));
    EXPECT_TRUE(booleanOf(0.0));
    EXPECT_TRUE(booleanOf(-0.999));
    EXPECT_FALSE(booleanOf(1.0));
    EXPECT_FALSE(booleanOf(-2.5));
    EXPECT_FALSE(booleanOf(-1.0));
}

TEST(Conversions, ADoubleBeyondEveryIntegerIsNotTrue) {
    EXPECT_FALSE(booleanOf(infinity));
    EXPECT_FALSE(booleanOf(-infinity));
    EXPECT_FALSE(booleanOf(1e300));
    EXPECT_FALSE(booleanOf(4294967296.0)); // its low 32 bits are 0
    EXPECT_FALSE(booleanOf(std::nan("")));
}

TEST(Conversions, AStringIsTrueIfItHasText) {
    EXPECT_TRUE(booleanOf("false"));
    EXPECT_TRUE(booleanOf("0"));
    EXPECT_FALSE(booleanOf(""));
}

TEST(Conversions, ABooleanIsItself) {
    EXPECT_TRUE(booleanOf(true));
    EXPECT_FALSE(booleanOf(false));
    EXPECT_EQ(intOf(true), 1);
    EXPECT_EQ(intOf(false), 0);
    EXPECT_EQ(doubleOf(true), 1.0);
    EXPECT_EQ(doubleOf(false), 0.0);
}

TEST(Conversions, AGuidIsItsIntValue) {
    EXPECT_TRUE(booleanOf(JHashCode(2)));
    EXPECT_FALSE(booleanOf(JHashCode()));
    EXPECT_EQ(intOf(JHashCode(5)), 5);
    EXPECT_EQ(intOf(JHashCode(0, 1, 0, 0)), 2147483647);
    EXPECT_EQ(doubleOf(JHashCode(0, 0, 0, 1)), 2147483647.0);
    EXPECT_EQ(doubleOf(JHashCode(0xFFFFFFFFU)), -1.0);
}

TEST(Conversions, AnIntIsANumber) {
    EXPECT_EQ(intOf(-7), -7);
    EXPECT_EQ(doubleOf(-7), -7.0);
    EXPECT_EQ(doubleOf(INT32_MIN), -2147483648.0);
}

TEST(Conversions, ADoubleTruncatesTowardZero) {
    EXPECT_EQ(intOf(-2.7), -2);
    EXPECT_EQ(intOf(2.7), 2);
    EXPECT_EQ(intOf(2147483648.0), INT32_MIN);
    EXPECT_EQ(intOf(1e300), 0);
    EXPECT_EQ(intOf(infinity), 0);
    EXPECT_EQ(intOf(std::nan("")), 0);
}

TEST(Conversions, AStringIsItsLeadingNumber) {
    EXPECT_EQ(intOf("12abc"), 12);
    EXPECT_EQ(intOf("abc"), 0);
    EXPECT_EQ(intOf(" -12"), -12);
    EXPECT_EQ(intOf("99999999999"), INT32_MAX);
    EXPECT_EQ(doubleOf("2.5abc"), 2.5);
    EXPECT_EQ(doubleOf("abc"), 0.0);
}

TEST(Conversions, AGuidHoldsTheIntegerInItsLowestWord) {
    EXPECT_EQ(guidOf(true), JHashCode(1, 0, 0, 0));
    EXPECT_EQ(guidOf(false), JHashCode());
    EXPECT_EQ(guidOf(-1), JHashCode(0xFFFFFFFFU, 0, 0, 0));
    EXPECT_EQ(guidOf(-2.7), JHashCode(0xFFFFFFFEU, 0, 0, 0));
    EXPECT_EQ(guidOf("12abc"), JHashCode(12, 0, 0, 0));
    EXPECT_EQ(guidOf(JHashCode(1, 2, 3, 4)), JHashCode(1, 2, 3, 4));
}

TEST(Conversions, AStringHoldsTheTextForm) {
    EXPECT_EQ(stringOf(true), "true");
    EXPECT_EQ(stringOf(false), "false");
    EXPECT_EQ(stringOf(-7), "-7");
    EXPECT_EQ(stringOf(2.5), "2.500000");
    EXPECT_EQ(stringOf(-infinity), "-inf");
    EXPECT_EQ(stringOf(JHashCode(0x3F2504E0U, 0x11D34F89U, 0x05030C9AU, 0x01332CE8U)),
              "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
}

TEST(Conversions, AStringIsReturnedItselfWithOneMoreReference) {
    const Held<KEL> source = of("text");
    const Held<KEL_String> text(convertToString(source.get()));
    EXPECT_EQ(static_cast<KEL*>(text.get()), source.get());
    EXPECT_EQ(kel::test::referencesOf(*source), 2);
}

TEST(Conversions, TheLongestTextFits) {
    EXPECT_EQ(stringOf(-std::numeric_limits<double>::max()).size(), 317U);
}

TEST(Conversions, MakingAStringLeavesTheTextOfTheSource) {
    const Held<KEL> source = of(7);
    const char* text = source->toString();
    Held<KEL_String>(convertToString(source.get())).clear();
    EXPECT_STREQ(text, "7");
}

TEST(Conversions, TheStringIsNullWithoutMemory) {
    const Held<KEL> source = of(1e30); // its text does not fit the object
    const auto convert = [&] { Held<KEL_String>(convertToString(source.get())).clear(); };
    EXPECT_NO_THROW({
        for (std::size_t allowed = 0; allowed < 2; ++allowed) {
            const kel::test::FailingAllocation failing(allowed);
            EXPECT_EQ(convertToString(source.get()), nullptr) << allowed;
        }
    });
    EXPECT_GE(kel::test::failEachAllocation(convert), 2U);
}

} // namespace
