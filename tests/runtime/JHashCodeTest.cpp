#include <kel/JPointer.h>
#include <kel/JString.h>

#include "support/AllocationFailure.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {

std::string decimalTextOf(const JHashCode& code) {
    char text[JHashCode::maxDecimalTextLength + 1];
    const size_t length = code.toDecimalText(text);
    EXPECT_EQ(length, std::strlen(text));
    return text;
}

std::string guidTextOf(const JHashCode& code) {
    char text[JHashCode::guidTextLength + 1];
    std::memset(text, '?', sizeof text);
    code.toGuidText(text);
    EXPECT_EQ(text[JHashCode::guidTextLength], '\0');
    return text;
}

const KELGuid sampleGuid = {
    0x3F2504E0U, 0x4F89, 0x11D3, {0x9A, 0x0C, 0x03, 0x05, 0xE8, 0x2C, 0x33, 0x01}};

TEST(JHashCode, IsAPlainValueOfSixteenBytes) {
    static_assert(std::is_trivially_copyable_v<JHashCode>);
    static_assert(std::is_standard_layout_v<JHashCode>);
    static_assert(sizeof(JHashCode) == 16);
    EXPECT_TRUE(JHashCode().isZero());
}

TEST(JHashCode, OneWordGoesIntoTheLowest) {
    EXPECT_EQ(JHashCode(7U), JHashCode(7, 0, 0, 0));
}

TEST(JHashCode, IsEqualOnlyInAllFourWords) {
    const JHashCode code(1, 2, 3, 4);
    EXPECT_EQ(code, JHashCode(1, 2, 3, 4));
    EXPECT_NE(code, JHashCode(0, 2, 3, 4));
    EXPECT_NE(code, JHashCode(1, 0, 3, 4));
    EXPECT_NE(code, JHashCode(1, 2, 0, 4));
    EXPECT_NE(code, JHashCode(1, 2, 3, 0));
}

TEST(JHashCode, IsZeroOnlyWithoutAnyBit) {
    EXPECT_TRUE(JHashCode(0, 0, 0, 0).isZero());
    EXPECT_FALSE(JHashCode(1, 0, 0, 0).isZero());
    EXPECT_FALSE(JHashCode(0, 1, 0, 0).isZero());
    EXPECT_FALSE(JHashCode(0, 0, 1, 0).isZero());
    EXPECT_FALSE(JHashCode(0, 0, 0, 0x80000000U).isZero());
}

TEST(JHashCode, IntValueIsTheLowestWordOfASmallNumber) {
    EXPECT_EQ(JHashCode(1, 0, 0, 0).intValue(), 1);
    EXPECT_EQ(JHashCode(0xFFFFFFFFU, 0, 0, 0).intValue(), -1);
    EXPECT_EQ(JHashCode(0x80000000U, 0, 0, 0).intValue(), INT32_MIN);
}

TEST(JHashCode, IntValueOfALargeNumberSaturates) {
    EXPECT_EQ(JHashCode(5, 1, 0, 0).intValue(), 2147483647);
    EXPECT_EQ(JHashCode(5, 0, 1, 0).intValue(), 2147483647);
    EXPECT_EQ(JHashCode(5, 0, 0, 1).intValue(), 2147483647);
    EXPECT_EQ(JHashCode(0, 0, 0, 0x80000000U).intValue(), 2147483647);
}

TEST(JHashCode, DecimalTextIsFourWordsOfEightDigits) {
    EXPECT_EQ(decimalTextOf(JHashCode(1, 2, 3, 4)), "00000004000000030000000200000001");
    EXPECT_EQ(decimalTextOf(JHashCode()), "00000000000000000000000000000000");
}

TEST(JHashCode, DecimalTextOfALargeWordIsLonger) {
    EXPECT_EQ(decimalTextOf(JHashCode(4294967295U, 0, 0, 0)), "0000000000000000000000004294967295");
    EXPECT_EQ(decimalTextOf(JHashCode(0, 99999999, 100000000, 0)),
              "000000001000000009999999900000000");
    EXPECT_EQ(decimalTextOf(JHashCode(~0U, ~0U, ~0U, ~0U)),
              "4294967295429496729542949672954294967295");
}

TEST(JHashCode, TakesTheBytesOfAGuidInMemoryOrder) {
    EXPECT_EQ(JHashCode(sampleGuid), JHashCode(0x3F2504E0U, 0x11D34F89U, 0x05030C9AU, 0x01332CE8U));
}

TEST(JHashCode, GivesTheGuidBack) {
    const KELGuid guid = JHashCode(sampleGuid).toGuid();
    EXPECT_EQ(guid.data1, sampleGuid.data1);
    EXPECT_EQ(guid.data2, sampleGuid.data2);
    EXPECT_EQ(guid.data3, sampleGuid.data3);
    EXPECT_EQ(std::memcmp(guid.data4, sampleGuid.data4, 8), 0);
}

TEST(JHashCode, GuidTextIsTheUsualOneInUpperCase) {
    EXPECT_EQ(guidTextOf(JHashCode(sampleGuid)), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
    EXPECT_EQ(guidTextOf(JHashCode()), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(guidTextOf(JHashCode(~0U, ~0U, ~0U, ~0U)), "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF");
}

TEST(JHashCode, GuidTextKeepsLeadingZerosOfEveryField) {
    EXPECT_EQ(guidTextOf(JHashCode(1, 0x00030002U, 0x07060504U, 0x0B0A0908U)),
              "00000001-0002-0003-0405-060708090A0B");
}

TEST(JHashCode, StringsCarryTheTextsAndOneReference) {
    const JPointer<JString> decimal(JHashCode(1, 2, 3, 4).toDecimalString());
    const JPointer<JString> guid(JHashCode(sampleGuid).toGuidString());
    EXPECT_STREQ(decimal->chars(), "00000004000000030000000200000001");
    EXPECT_STREQ(guid->chars(), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
    EXPECT_EQ(decimal->getRefCount(), 1);
    EXPECT_EQ(guid->getRefCount(), 1);
}

TEST(JHashCode, TheStringIsNullWhenItOrItsCharactersCannotBeAllocated) {
    const JHashCode code(1, 2, 3, 4);
    for (const std::size_t allowed : {0U, 1U}) {
        for (const bool forGood : {false, true}) {
            const auto withoutMemory = [&](JString* (JHashCode::*form)() const) {
                const kel::test::FailingAllocation failing(allowed, forGood);
                return (code.*form)();
            };
            EXPECT_EQ(withoutMemory(&JHashCode::toDecimalString), nullptr);
            EXPECT_EQ(withoutMemory(&JHashCode::toGuidString), nullptr);
        }
    }
}

} // namespace
