#include "runtime/Text.h"
#include "support/CommaLocale.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using kel::formatDouble;
using kel::formatInteger;
using kel::parseDouble;
using kel::parseInteger;
using kel::test::CommaLocale;

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::nan("");

/// Formats a value into a buffer. Expects a NUL after the text, and nothing after the NUL.
template <std::size_t size, class Value>
std::string formatted(std::size_t (*format)(char*, Value), Value value) {
    constexpr char untouched = '?';
    char buffer[size + 2];
    std::fill(std::begin(buffer), std::end(buffer), untouched);
    const std::size_t length = format(buffer, value);
    EXPECT_LT(length, size);
    EXPECT_EQ(buffer[length], '\0');
    EXPECT_EQ(buffer[length + 1], untouched);
    return {buffer, length};
}

std::string text(int32_t value) {
    return formatted<kel::integerTextSize>(formatInteger, value);
}

std::string text(double value) {
    return formatted<kel::doubleTextSize>(formatDouble, value);
}

/// Returns the output of printf, with a decimal point in every locale.
std::string printed(const char* format, double value) {
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, format, value);
    std::string out = buffer;
    std::replace(out.begin(), out.end(), ',', '.');
    return out;
}

/// Returns whether printf gives another text than the library and most C run-times. Wine's rounds
/// the middle between two texts up, not to the even digit. A middle is an odd multiple of 2 to the
/// -7.
bool isMisprinted(double value) {
    static const bool roundsToEven = printed("%.0f", 0.5) == "0";
    return !roundsToEven && std::fabs(std::fmod(std::ldexp(value, 7), 2.0)) == 1.0;
}

/// Expects the text that printf gives.
void expectAsPrinted(double value) {
    if (!isMisprinted(value)) {
        EXPECT_EQ(text(value), printed("%f", value));
    }
}

/// Returns every power of two that a double holds, its neighbours, and all of them negated.
std::vector<double> aroundPowersOfTwo() {
    std::vector<double> values;
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        for (const double value :
             {std::nextafter(power, 0.0), power, std::nextafter(power, infinity)}) {
            values.push_back(value);
            values.push_back(-value);
        }
    }
    return values;
}

TEST(Text, IntegersAreDecimal) {
    EXPECT_EQ(text(0), "0");
    EXPECT_EQ(text(-7), "-7");
    EXPECT_EQ(text(INT32_MAX), "2147483647");
    EXPECT_EQ(text(INT32_MIN), "-2147483648");
}

TEST(Text, IntegersAroundEveryPowerOfTwoAreWrittenAndReadBack) {
    for (int bit = 0; bit < 32; ++bit) {
        for (int64_t value = (int64_t{1} << bit) - 1; value <= (int64_t{1} << bit) + 1; ++value) {
            for (const auto number : {static_cast<int32_t>(value), static_cast<int32_t>(-value)}) {
                ASSERT_EQ(text(number), std::to_string(number));
                ASSERT_EQ(parseInteger(text(number)), number);
            }
        }
    }
}

TEST(Text, IntegersSaturateAroundEveryPowerOfTwo) {
    for (int bit = 0; bit < 62; ++bit) {
        for (int64_t value = (int64_t{1} << bit) - 1; value <= (int64_t{1} << bit) + 1; ++value) {
            for (const int64_t number : {value, -value}) {
                const int64_t expected = std::clamp<int64_t>(number, INT32_MIN, INT32_MAX);
                ASSERT_EQ(parseInteger(std::to_string(number)), expected) << number;
            }
        }
    }
}

TEST(Text, IntegersOfAnyLengthSaturate) {
    EXPECT_EQ(parseInteger("2147483648"), INT32_MAX);
    EXPECT_EQ(parseInteger("-2147483649"), INT32_MIN);
    EXPECT_EQ(parseInteger(std::string(1000, '9')), INT32_MAX);
    EXPECT_EQ(parseInteger(std::string("-").append(1000, '9')), INT32_MIN);
    EXPECT_EQ(parseInteger(std::string(1000, '0').append("12")), 12);
}

TEST(Text, AnIntegerEndsAtTheFirstOtherCharacter) {
    EXPECT_EQ(parseInteger("12abc"), 12);
    EXPECT_EQ(parseInteger("12 34"), 12);
    EXPECT_EQ(parseInteger("1.9"), 1);
    EXPECT_EQ(parseInteger("0x1f"), 0);
    EXPECT_EQ(parseInteger("1e3"), 1);
}

TEST(Text, AnIntegerMayFollowBlanksAndOneSign) {
    EXPECT_EQ(parseInteger(" \t\n\v\f\r42"), 42);
    EXPECT_EQ(parseInteger("+42"), 42);
    EXPECT_EQ(parseInteger("  -42"), -42);
    EXPECT_EQ(parseInteger("-0"), 0);
}

TEST(Text, TextWithoutAnIntegerIs0) {
    for (const char* none : {"", "abc", "-", "+", "- 1", "+-1", "--1", ".5", " ",
                             "\xA0"
                             "1"}) {
        EXPECT_EQ(parseInteger(none), 0) << none;
    }
}

TEST(Text, DoublesHaveSixDecimals) {
    EXPECT_EQ(text(0.0), "0.000000");
    EXPECT_EQ(text(-0.0), "-0.000000");
    EXPECT_EQ(text(1.5), "1.500000");
    EXPECT_EQ(text(-2.7), "-2.700000");
    EXPECT_EQ(text(1e-7), "0.000000");
    EXPECT_EQ(text(1e22), "10000000000000000000000.000000");
}

TEST(Text, DoublesRoundTheirExactValue) {
    EXPECT_EQ(text(0.0000005), "0.000000"); // a little below the half
    EXPECT_EQ(text(0.0000015), "0.000002"); // a little above it
    EXPECT_EQ(text(0.99999951), "1.000000");
}

TEST(Text, AnExactHalfRoundsToTheEvenDigit) {
    EXPECT_EQ(text(1.0 / 128), "0.007812"); // 0.0078125
    EXPECT_EQ(text(3.0 / 128), "0.023438"); // 0.0234375
}

TEST(Text, InfinitiesAndNansHaveNames) {
    EXPECT_EQ(text(infinity), "inf");
    EXPECT_EQ(text(-infinity), "-inf");
    EXPECT_EQ(text(std::copysign(nan, 1.0)), "nan");
    EXPECT_EQ(text(std::copysign(nan, -1.0)), "-nan");
}

TEST(Text, TheLargestDoubleFits) {
    EXPECT_EQ(text(-DBL_MAX).size(), 317U);
    EXPECT_EQ(text(-DBL_MAX), printed("%f", -DBL_MAX));
}

TEST(Text, DoublesAroundEveryPowerOfTwoAreWrittenAsPrintfDoes) {
    for (const double value : aroundPowersOfTwo()) {
        expectAsPrinted(value);
    }
}

TEST(Text, DoublesAroundEveryPowerOfTwoAreReadBack) {
    for (const double value : aroundPowersOfTwo()) {
        ASSERT_EQ(parseDouble(printed("%.17g", value)), value) << printed("%.17g", value);
        ASSERT_EQ(parseDouble(printed("%.25e", value)), value) << printed("%.25e", value);
    }
}

TEST(Text, RandomDoublesAreWrittenAndReadAsPrintfDoes) {
    std::mt19937_64 random(2026);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(static_cast<uint64_t>(random()));
        if (std::isfinite(value)) {
            expectAsPrinted(value);
            ASSERT_EQ(parseDouble(printed("%.17g", value)), value);
        }
    }
}

// Here the quick way to six decimals has to round, carry, or leave the value to the exact way.
TEST(Text, DoublesAroundEveryMiddleAreWrittenAsPrintfDoes) {
    std::mt19937_64 random(2027);
    for (int i = 0; i < 20000; ++i) {
        const double whole = std::floor(std::ldexp(1.0, static_cast<int>(random() % 34))) - 1;
        const auto halves = static_cast<double>(random() % 2000001);
        const double middle = whole + halves / 2000000;
        double value = middle;
        for (int step = 0; step < 3; ++step, value = std::nextafter(value, infinity)) {
            expectAsPrinted(value);
            expectAsPrinted(-value);
        }
        const double dyadic =
            std::ldexp(static_cast<double>(random() % 65536), -static_cast<int>(random() % 40));
        expectAsPrinted(dyadic);
    }
}

TEST(Text, DigitsThatNoDoubleHasStillDecideTheRounding) {
    const std::string middle = "9007199254740993"; // between two doubles; the even one ends with 2
    const std::string zeros(1000, '0');
    EXPECT_EQ(parseDouble(middle), 9007199254740992.0);
    EXPECT_EQ(parseDouble(middle + "." + zeros), 9007199254740992.0);
    EXPECT_EQ(parseDouble(middle + "." + zeros + "1"), 9007199254740994.0);
    EXPECT_EQ(parseDouble(middle + zeros + "1e-1001"), 9007199254740994.0);
    EXPECT_EQ(parseDouble("0." + zeros + middle + "e1016"), 9007199254740992.0);
}

TEST(Text, ACarryGoesIntoThePlacesBeforeThePoint) {
    EXPECT_EQ(text(9.9999999), "10.000000");
    EXPECT_EQ(text(-4294967294.9999999), "-4294967295.000000");
    EXPECT_EQ(text(4294967295.9999995), "4294967296.000000");
    EXPECT_EQ(text(-1e-9), "-0.000000");
}

TEST(Text, ADoubleMayHaveAPointAndAnExponent) {
    EXPECT_EQ(parseDouble("12"), 12.0);
    EXPECT_EQ(parseDouble("12."), 12.0);
    EXPECT_EQ(parseDouble("12.5"), 12.5);
    EXPECT_EQ(parseDouble(".5"), 0.5);
    EXPECT_EQ(parseDouble("1e3"), 1000.0);
    EXPECT_EQ(parseDouble("1.5E+3"), 1500.0);
    EXPECT_EQ(parseDouble("25e-2"), 0.25);
    EXPECT_EQ(parseDouble("1.e2"), 100.0);
}

TEST(Text, ADoubleMayFollowBlanksAndOneSign) {
    EXPECT_EQ(parseDouble(" \t\n\v\f\r2.5"), 2.5);
    EXPECT_EQ(parseDouble("+2.5"), 2.5);
    EXPECT_EQ(parseDouble("-2.5"), -2.5);
    EXPECT_TRUE(std::signbit(parseDouble("-0")));
}

TEST(Text, ADoubleEndsAtTheFirstOtherCharacter) {
    EXPECT_EQ(parseDouble("1.5abc"), 1.5);
    EXPECT_EQ(parseDouble("1.2.3"), 1.2);
    EXPECT_EQ(parseDouble("1e"), 1.0);
    EXPECT_EQ(parseDouble("1e+"), 1.0);
    EXPECT_EQ(parseDouble("1e+x"), 1.0);
    EXPECT_EQ(parseDouble("1,5"), 1.0);
    EXPECT_EQ(parseDouble("1 2"), 1.0);
}

TEST(Text, OnlyDecimalNotationIsADouble) {
    for (const char* none : {"", "abc", "-", ".", "-.", "e5", ".e5", "+-1", "- 1", "inf", "-inf",
                             "infinity", "nan", "NAN(1)", "INF"}) {
        EXPECT_EQ(parseDouble(none), 0.0) << none;
    }
    EXPECT_EQ(parseDouble("0x1p4"), 0.0);
    EXPECT_EQ(parseDouble("0x10"), 0.0);
}

TEST(Text, TooLargeADoubleIsInfinite) {
    EXPECT_EQ(parseDouble("1e309"), infinity);
    EXPECT_EQ(parseDouble("-1e309"), -infinity);
    EXPECT_EQ(parseDouble(std::string(400, '9')), infinity);
    EXPECT_EQ(parseDouble("1e99999999999999999999"), infinity);
    EXPECT_EQ(parseDouble("0.001e400"), infinity);
    EXPECT_EQ(parseDouble("1797693134862315708145274237317043567980e270"), infinity);
}

TEST(Text, TooSmallADoubleIs0) {
    EXPECT_EQ(parseDouble("1e-400"), 0.0);
    EXPECT_TRUE(std::signbit(parseDouble("-1e-400")));
    EXPECT_EQ(parseDouble("1000e-500"), 0.0);
    EXPECT_EQ(parseDouble(std::string("0.").append(400, '0').append("1")), 0.0);
    EXPECT_EQ(parseDouble("1e-99999999999999999999"), 0.0);
}

TEST(Text, ALargeExponentAndManyZerosMayMeetInTheMiddle) {
    EXPECT_EQ(parseDouble(std::string("0.").append(400, '0').append("1e401")), 1.0);
    EXPECT_EQ(parseDouble(std::string("1").append(400, '0').append("e-400")), 1.0);
    EXPECT_EQ(parseDouble("0e99999999999999999999"), 0.0);
    EXPECT_EQ(parseDouble("0.000e99999999999999999999"), 0.0);
}

TEST(Text, TheLargestAndTheSmallestDoubleAreRead) {
    EXPECT_EQ(parseDouble("1.7976931348623157e308"), DBL_MAX);
    EXPECT_EQ(parseDouble("4.9406564584124654e-324"), std::ldexp(1.0, -1074));
    EXPECT_EQ(parseDouble("2.4703282292062327e-324"), 0.0); // below half of it
    EXPECT_EQ(parseDouble("2.4703282292062328e-324"), std::ldexp(1.0, -1074));
}

TEST(Text, NothingDependsOnTheLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(text(1234567.25), "1234567.250000");
    EXPECT_EQ(text(-1234567), "-1234567");
    EXPECT_EQ(parseDouble("1.25"), 1.25);
    EXPECT_EQ(parseDouble("1,25"), 1.0);
    EXPECT_EQ(parseInteger("1.234"), 1);
}

TEST(Text, DoublesAroundEveryPowerOfTwoAreTheSameInEveryLocale) {
    const CommaLocale comma;
    KEL_NEED(comma);
    for (const double value : aroundPowersOfTwo()) {
        expectAsPrinted(value);
        ASSERT_EQ(parseDouble(printed("%.17g", value)), value);
    }
}

} // namespace
