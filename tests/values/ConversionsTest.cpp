#include "values/Conversions.h"
#include "meta/KEL_Manager_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Scalars.h"
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
using kel::test::infinity;

Held<KEL> scalar(int32_t value) {
    return Held<KEL>(new KEL_Int_Impl(value));
}
Held<KEL> scalar(bool value) {
    return Held<KEL>(new KEL_Boolean_Impl(value));
}
Held<KEL> scalar(double value) {
    return Held<KEL>(new KEL_Double_Impl(value));
}
Held<KEL> scalar(const JHashCode& value) {
    return Held<KEL>(new KEL_guid_Impl(value));
}
Held<KEL> scalar(const char* value) {
    return Held<KEL>(new KEL_String_Impl(value));
}

template <class T> bool booleanFrom(T value) {
    return convertToBoolean(scalar(value).get());
}
template <class T> int32_t intFrom(T value) {
    return convertToInt(scalar(value).get());
}
template <class T> double doubleFrom(T value) {
    return convertToDouble(scalar(value).get());
}
template <class T> JHashCode guidFrom(T value) {
    return convertToGuid(scalar(value).get());
}

/// Returns the text of the String that the value converts to. Checks that only the caller owns the
/// String.
template <class T> std::string stringFrom(T value) {
    const Held<KEL> source = scalar(value);
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
    EXPECT_TRUE(booleanFrom(2));
    EXPECT_TRUE(booleanFrom(-1));
    EXPECT_TRUE(booleanFrom(1));
    EXPECT_FALSE(booleanFrom(0));
}

TEST(Conversions, ADoubleIsTrueIfItTruncatesTo0) {
    EXPECT_TRUE(booleanFrom(0.5));
    EXPECT_TRUE(booleanFrom(0.0));
    EXPECT_TRUE(booleanFrom(-0.999));
    EXPECT_FALSE(booleanFrom(1.0));
    EXPECT_FALSE(booleanFrom(-2.5));
    EXPECT_FALSE(booleanFrom(-1.0));
}

TEST(Conversions, ADoubleBeyondEveryIntegerIsNotTrue) {
    EXPECT_FALSE(booleanFrom(infinity));
    EXPECT_FALSE(booleanFrom(-infinity));
    EXPECT_FALSE(booleanFrom(1e300));
    EXPECT_FALSE(booleanFrom(4294967296.0)); // its low 32 bits are 0
    EXPECT_FALSE(booleanFrom(std::nan("")));
}

TEST(Conversions, AStringIsTrueIfItHasText) {
    EXPECT_TRUE(booleanFrom("false"));
    EXPECT_TRUE(booleanFrom("0"));
    EXPECT_FALSE(booleanFrom(""));
}

TEST(Conversions, ABooleanIsItself) {
    EXPECT_TRUE(booleanFrom(true));
    EXPECT_FALSE(booleanFrom(false));
    EXPECT_EQ(intFrom(true), 1);
    EXPECT_EQ(intFrom(false), 0);
    EXPECT_EQ(doubleFrom(true), 1.0);
    EXPECT_EQ(doubleFrom(false), 0.0);
}

TEST(Conversions, AGuidIsItsIntValue) {
    EXPECT_TRUE(booleanFrom(JHashCode(2)));
    EXPECT_FALSE(booleanFrom(JHashCode()));
    EXPECT_EQ(intFrom(JHashCode(5)), 5);
    EXPECT_EQ(intFrom(JHashCode(0, 1, 0, 0)), 2147483647);
    EXPECT_EQ(doubleFrom(JHashCode(0, 0, 0, 1)), 2147483647.0);
    EXPECT_EQ(doubleFrom(JHashCode(0xFFFFFFFFU)), -1.0);
}

TEST(Conversions, AnIntIsANumber) {
    EXPECT_EQ(intFrom(-7), -7);
    EXPECT_EQ(doubleFrom(-7), -7.0);
    EXPECT_EQ(doubleFrom(INT32_MIN), -2147483648.0);
}

TEST(Conversions, ADoubleTruncatesTowardZero) {
    EXPECT_EQ(intFrom(-2.7), -2);
    EXPECT_EQ(intFrom(2.7), 2);
    EXPECT_EQ(intFrom(2147483648.0), INT32_MIN);
    EXPECT_EQ(intFrom(1e300), 0);
    EXPECT_EQ(intFrom(infinity), 0);
    EXPECT_EQ(intFrom(std::nan("")), 0);
}

TEST(Conversions, AStringIsItsLeadingNumber) {
    EXPECT_EQ(intFrom("12abc"), 12);
    EXPECT_EQ(intFrom("abc"), 0);
    EXPECT_EQ(intFrom(" -12"), -12);
    EXPECT_EQ(intFrom("99999999999"), INT32_MAX);
    EXPECT_EQ(doubleFrom("2.5abc"), 2.5);
    EXPECT_EQ(doubleFrom("abc"), 0.0);
}

TEST(Conversions, AGuidHoldsTheIntegerInItsLowestWord) {
    EXPECT_EQ(guidFrom(true), JHashCode(1, 0, 0, 0));
    EXPECT_EQ(guidFrom(false), JHashCode());
    EXPECT_EQ(guidFrom(-1), JHashCode(0xFFFFFFFFU, 0, 0, 0));
    EXPECT_EQ(guidFrom(-2.7), JHashCode(0xFFFFFFFEU, 0, 0, 0));
    EXPECT_EQ(guidFrom("12abc"), JHashCode(12, 0, 0, 0));
    EXPECT_EQ(guidFrom(JHashCode(1, 2, 3, 4)), JHashCode(1, 2, 3, 4));
}

TEST(Conversions, AStringHoldsTheTextForm) {
    EXPECT_EQ(stringFrom(true), "true");
    EXPECT_EQ(stringFrom(false), "false");
    EXPECT_EQ(stringFrom(-7), "-7");
    EXPECT_EQ(stringFrom(2.5), "2.500000");
    EXPECT_EQ(stringFrom(-infinity), "-inf");
    EXPECT_EQ(stringFrom(JHashCode(0x3F2504E0U, 0x11D34F89U, 0x05030C9AU, 0x01332CE8U)),
              "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
}

TEST(Conversions, AStringIsReturnedItselfWithOneMoreReference) {
    const Held<KEL> source = scalar("text");
    const Held<KEL_String> text(convertToString(source.get()));
    EXPECT_EQ(static_cast<KEL*>(text.get()), source.get());
    EXPECT_EQ(kel::test::referencesOf(*source), 2);
}

TEST(Conversions, TheLongestTextFits) {
    EXPECT_EQ(stringFrom(-std::numeric_limits<double>::max()).size(), 317U);
}

TEST(Conversions, MakingAStringLeavesTheTextOfTheSource) {
    const Held<KEL> source = scalar(7);
    const char* text = source->toString();
    Held<KEL_String>(convertToString(source.get())).clear();
    EXPECT_STREQ(text, "7");
}

TEST(Conversions, TheStringIsNullWithoutMemory) {
    const Held<KEL> source = scalar(1e30); // its text does not fit the object
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
