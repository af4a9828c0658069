#include "support/Held.h"
#include "support/SampleGuids.h"
#include "support/Watcher.h"
#include "values/KEL_guid_Impl.h"

#include <gtest/gtest.h>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::sampleCode;
using kel::test::Watcher;

Held<KEL_guid> aGuid(const JHashCode& value) {
    return Held<KEL_guid>(new KEL_guid_Impl(value));
}

JHashCode valueOf(const KEL_guid& guid) {
    JHashCode value(9, 9, 9, 9);
    EXPECT_EQ(&guid.getValue(value), &value);
    return value;
}

TEST(KEL_guid, IsOfItsKindAndHoldsItsValue) {
    EXPECT_EQ(aGuid(sampleCode)->getType(), 4);
    EXPECT_EQ(valueOf(*aGuid(sampleCode)), sampleCode);
}

TEST(KEL_guid, IsIndependentOfTheIdentity) {
    JHashCode identity;
    EXPECT_NE(aGuid(sampleCode)->getHashCode(identity), sampleCode);
    EXPECT_EQ(make<KEL_guid_Impl>(JHashCode(1, 2, 3, 4), sampleCode)->getHashCode(identity),
              JHashCode(1, 2, 3, 4));
}

TEST(KEL_guid, IsItsIntValueAsANumber) {
    EXPECT_EQ(aGuid(JHashCode(5))->toInt(), 5);
    EXPECT_EQ(aGuid(JHashCode(0xFFFFFFFFU))->toInt(), -1);
    EXPECT_EQ(aGuid(JHashCode(5))->toDouble(), 5.0);
    EXPECT_EQ(aGuid(JHashCode())->toInt(), 0);
}

TEST(KEL_guid, SaturatesWithAnyBitOutsideTheLowestWord) {
    for (int bit = 0; bit < 32; ++bit) {
        const uint32_t word = 1U << bit;
        EXPECT_EQ(aGuid(JHashCode(0, word, 0, 0))->toInt(), 2147483647);
        EXPECT_EQ(aGuid(JHashCode(0, 0, word, 0))->toInt(), 2147483647);
        EXPECT_EQ(aGuid(JHashCode(0, 0, 0, word))->toDouble(), 2147483647.0);
    }
}

TEST(KEL_guid, IsTrueUnlessItsIntIs0) {
    EXPECT_TRUE(aGuid(JHashCode(2))->toBoolean());
    EXPECT_TRUE(aGuid(JHashCode(0, 0, 0, 1))->toBoolean());
    EXPECT_FALSE(aGuid(JHashCode())->toBoolean());
}

TEST(KEL_guid, TextIsTheGuidLayout) {
    EXPECT_STREQ(aGuid(sampleCode)->toString(), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
    EXPECT_STREQ(aGuid(JHashCode())->toString(), "00000000-0000-0000-0000-000000000000");
}

TEST(KEL_guid, TextIsWrittenAnewAtEveryCall) {
    const Held<KEL_guid> value = aGuid(sampleCode);
    value->toString();
    value->setValue(JHashCode());
    EXPECT_STREQ(value->toString(), "00000000-0000-0000-0000-000000000000");
    value->freeString();
    EXPECT_STREQ(value->toString(), "00000000-0000-0000-0000-000000000000");
}

TEST(KEL_guid, ToGuidIsTheValue) {
    JHashCode out;
    EXPECT_EQ(aGuid(sampleCode)->toGuid(out), sampleCode);
}

TEST(KEL_guid, SettersPutNumbersIntoTheLowestWord) {
    const Held<KEL_guid> value = aGuid(sampleCode);
    EXPECT_EQ(valueOf(*value->setBoolean(true)), JHashCode(1, 0, 0, 0));
    EXPECT_EQ(valueOf(*value->setBoolean(false)), JHashCode());
    EXPECT_EQ(valueOf(*value->setInt(-1)), JHashCode(0xFFFFFFFFU, 0, 0, 0));
    EXPECT_EQ(valueOf(*value->setDouble(-2.7)), JHashCode(0xFFFFFFFEU, 0, 0, 0));
    EXPECT_EQ(valueOf(*value->setString("12abc")), JHashCode(12, 0, 0, 0));
    EXPECT_EQ(valueOf(*value->setguid(sampleCode)), sampleCode);
}

} // namespace
