// The scalar kinds, each operation called through its interface.
#include "Host.h"

#include <cmath>
#include <limits>

namespace {

using host::hold;
using host::thrownMessage;
using host::Watcher;

const KELGuid sampleGuid = {0x3F2504E0U, 0x4F89, 0x11D3, {0x9A, 0x0C, 3, 5, 0xE8, 0x2C, 0x33, 1}};
const JHashCode sample(sampleGuid);

JHashCode guidOf(const KELInterface_Casting_V1& value) {
    JHashCode guid(9, 9, 9, 9);
    return value.toGuid(guid);
}

TEST(HostScalars, AreMadeWithTheirValueAndOneReference) {
    JHashCode guid;
    EXPECT_EQ(hold(CreateKELInt(-7))->getValue(), -7);
    EXPECT_TRUE(hold(CreateKELBoolean(true))->getValue());
    EXPECT_EQ(hold(CreateKELDouble(2.5))->getValue(), 2.5);
    EXPECT_STREQ(hold(CreateKELString("abc"))->getValue(), "abc");
    EXPECT_EQ(hold(CreateKELGuid(sampleGuid))->getValue(guid), sample);
    EXPECT_EQ(host::referencesOf(*hold(CreateKELInt(-7))), 1);
}

TEST(HostScalars, AStringFromNullIsEmptyAndAGuidFromNothingIsZero) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_STREQ(hold(CreateKELString(nullptr))->getValue(), "");
    EXPECT_TRUE(hold(CreateKELGuid())->getValue(guid).isZero());
    EXPECT_STREQ(hold(CreateKELGuid())->toString(), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(hold(CreateKELGuid())->toInt(), 0);
}

TEST(HostScalars, IntThroughItsInterface) {
    const auto value = hold(CreateKELInt(0));
    KELInterface_Int_V1& number = *value;
    number.setValue(5);
    EXPECT_EQ(number.getValue(), 5);
    EXPECT_EQ(number.setBoolean(true)->getValue(), 1);
    EXPECT_EQ(number.setInt(-3)->getValue(), -3);
    EXPECT_EQ(number.setDouble(7.9)->getValue(), 7);
    EXPECT_EQ(number.setString("12abc")->getValue(), 12);
    EXPECT_EQ(number.setguid(JHashCode(5, 1, 0, 0))->getValue(), 2147483647);
    EXPECT_EQ(number.setInt(1), value.get());
}

TEST(HostScalars, BooleanThroughItsInterface) {
    const auto value = hold(CreateKELBoolean(false));
    KELInterface_Boolean_V1& truth = *value;
    truth.setValue(true);
    EXPECT_TRUE(truth.getValue());
    EXPECT_FALSE(truth.setBoolean(false)->getValue());
    EXPECT_TRUE(truth.setInt(1)->getValue());
    EXPECT_FALSE(truth.setDouble(0.5)->getValue());
    EXPECT_TRUE(truth.setString("false")->getValue());
    EXPECT_FALSE(truth.setguid(JHashCode())->getValue());
}

TEST(HostScalars, DoubleThroughItsInterface) {
    const auto value = hold(CreateKELDouble(0.0));
    KELInterface_Double_V1& number = *value;
    number.setValue(2.5);
    EXPECT_EQ(number.getValue(), 2.5);
    EXPECT_EQ(number.setBoolean(true)->getValue(), 1.0);
    EXPECT_EQ(number.setInt(-3)->getValue(), -3.0);
    EXPECT_EQ(number.setDouble(7.5)->getValue(), 7.5);
    EXPECT_EQ(number.setString("-1.5e1x")->getValue(), -15.0);
    EXPECT_EQ(number.setguid(JHashCode(4))->getValue(), 4.0);
}

TEST(HostScalars, StringThroughItsInterface) {
    const auto value = hold(CreateKELString("abc"));
    KELInterface_String_V1& text = *value;
    EXPECT_EQ(text.getChar(2), 'c');
    text.setValue("xyz");
    EXPECT_STREQ(text.getValue(), "xyz");
    EXPECT_STREQ(text.setBoolean(true)->getValue(), "true");
    EXPECT_STREQ(text.setInt(-3)->getValue(), "-3");
    EXPECT_STREQ(text.setDouble(2.5)->getValue(), "2.500000");
    EXPECT_STREQ(text.setString("text")->getValue(), "text");
    EXPECT_STREQ(text.setguid(sample)->getValue(), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
}

TEST(HostScalars, AStringRefusesAnIndexPastItsEnd) {
    const auto value = hold(CreateKELString("abc"));
    EXPECT_EQ(thrownMessage<KELArrayIndexOutOfBoundsException>([&] { value->getChar(3); }),
              "Attemping to reference past end of string.");
}

TEST(HostScalars, GuidThroughItsInterface) {
    const auto value = hold(CreateKELGuid(sampleGuid));
    KELInterface_guid_V1& guid = *value;
    JHashCode out;
    EXPECT_EQ(guid.getValue(out), sample);
    guid.setValue(JHashCode(7));
    EXPECT_EQ(guid.getValue(out), JHashCode(7));
    EXPECT_EQ(guid.setBoolean(true)->getValue(out), JHashCode(1));
    EXPECT_EQ(guid.setInt(-1)->getValue(out), JHashCode(0xFFFFFFFFU));
    EXPECT_EQ(guid.setDouble(2.7)->getValue(out), JHashCode(2));
    EXPECT_EQ(guid.setString("12abc")->getValue(out), JHashCode(12));
    EXPECT_EQ(guid.setguid(sample)->getValue(out), sample);
}

TEST(HostScalars, ConvertThroughTheCastingInterface) {
    const auto value = hold(CreateKELDouble(-129.5));
    const KELInterface_Casting_V1& number = *value;
    EXPECT_FALSE(number.toBoolean());
    EXPECT_EQ(number.toInt(), -129);
    EXPECT_EQ(number.toSignedChar(), 127);
    EXPECT_EQ(number.toUnsignedChar(), 127);
    EXPECT_EQ(number.toShort(), -129);
    EXPECT_EQ(number.toUnsignedShort(), 65407);
    EXPECT_EQ(number.toUnsignedInt(), 4294967167U);
    EXPECT_EQ(number.toLong(), -129L);
    EXPECT_EQ(number.toUnsignedLong(), std::numeric_limits<unsigned long>::max() - 128);
    EXPECT_EQ(number.toInt64(), -129);
    EXPECT_EQ(number.toUnsignedInt64(), 18446744073709551487U);
    EXPECT_EQ(number.toDouble(), -129.5);
    EXPECT_EQ(number.toFloat(), -129.5F);
    EXPECT_EQ(number.toLongDouble(), -129.5L);
    EXPECT_STREQ(number.toString(), "-129.500000");
    EXPECT_EQ(guidOf(number), JHashCode(4294967167U));
    value->freeString();
}

TEST(HostScalars, ConvertByTheirOwnRulesToBooleans) {
    EXPECT_FALSE(hold(CreateKELInt(2))->toBoolean());
    EXPECT_TRUE(hold(CreateKELInt(1))->toBoolean());
    EXPECT_TRUE(hold(CreateKELDouble(1.0))->toBoolean());
    EXPECT_FALSE(hold(CreateKELDouble(0.5))->toBoolean());
    EXPECT_TRUE(hold(CreateKELString("0"))->toBoolean());
    EXPECT_EQ(hold(CreateKELString("0"))->toInt(), 0);
    EXPECT_TRUE(hold(CreateKELGuid(sampleGuid))->toBoolean());
}

TEST(HostScalars, ConvertToIntAndDouble) {
    EXPECT_EQ(hold(CreateKELInt(-7))->toDouble(), -7.0);
    EXPECT_EQ(hold(CreateKELDouble(-7.9))->toInt(), -7);
    EXPECT_EQ(hold(CreateKELGuid(sampleGuid))->toInt(), 2147483647);
    EXPECT_STREQ(hold(CreateKELBoolean(false))->toString(), "false");
}

} // namespace
