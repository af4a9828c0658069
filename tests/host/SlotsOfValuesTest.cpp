// Calls the operations of every value and every scalar by slot.
#include "Host.h"
#include "RawSlots.h"

namespace {

using host::bySlot;
using host::hold;

TEST(SlotsOfValues, CountIdentifyAndName) {
    const auto number = hold(CreateKELInt(7));
    const auto raw = bySlot<KELInterface_RefCount_V1>(*number);
    JHashCode identity;
    JHashCode expected;
    raw.call<void()>("addRef");
    EXPECT_EQ(raw.call<int32_t()>("release"), 1);
    EXPECT_EQ(&raw.call<JHashCode&(JHashCode&) const>("getHashCode", identity), &identity);
    EXPECT_EQ(identity, number->getHashCode(expected));
    EXPECT_EQ(raw.call<int32_t() const>("getType"), KELKind_Int);
    EXPECT_EQ(raw.call<int32_t() const>("getRefCount"), 1);
}

TEST(SlotsOfValues, ConvertToEveryCType) {
    const auto number = hold(CreateKELInt(-2));
    const auto raw = bySlot<KELInterface_Casting_V1>(*number);
    JHashCode guid;
    EXPECT_FALSE(raw.call<bool() const>("toBoolean"));
    EXPECT_EQ(raw.call<int32_t() const>("toInt"), -2);
    EXPECT_EQ(raw.call<int8_t() const>("toSignedChar"), -2);
    EXPECT_EQ(raw.call<uint8_t() const>("toUnsignedChar"), 0xFE);
    EXPECT_EQ(raw.call<int16_t() const>("toShort"), -2);
    EXPECT_EQ(raw.call<uint16_t() const>("toUnsignedShort"), 0xFFFE);
    EXPECT_EQ(raw.call<uint32_t() const>("toUnsignedInt"), 0xFFFFFFFEU);
    EXPECT_EQ(raw.call<long() const>("toLong"), -2L);
    EXPECT_EQ(raw.call<unsigned long() const>("toUnsignedLong"), static_cast<unsigned long>(-2L));
    EXPECT_EQ(raw.call<int64_t() const>("toInt64"), -2);
    EXPECT_EQ(raw.call<uint64_t() const>("toUnsignedInt64"), 0xFFFFFFFFFFFFFFFEU);
    EXPECT_EQ(raw.call<double() const>("toDouble"), -2.0);
    EXPECT_EQ(raw.call<float() const>("toFloat"), -2.0F);
    EXPECT_EQ(raw.call<long double() const>("toLongDouble"), -2.0L);
    EXPECT_STREQ(raw.call<const char*() const>("toString"), "-2");
    EXPECT_EQ(raw.call<JHashCode&(JHashCode&) const>("toGuid", guid).w0, 0xFFFFFFFEU);
    raw.call<void()>("freeString");
    EXPECT_STREQ(raw.call<const char*() const>("toString"), "-2");
}

TEST(SlotsOfValues, CopyAssignAndCompare) {
    const auto number = hold(CreateKELInt(7));
    const auto text = hold(CreateKELString("9"));
    const auto raw = bySlot<KELInterface_V1>(*number);
    const auto copy = hold(raw.call<KEL*() const>("copy"));
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("equalsValue", copy.get()));
    EXPECT_FALSE(raw.call<bool(const KEL*) const>("equals", copy.get()));
    EXPECT_TRUE((raw.call<bool(const KEL*, const KEL*) const>("equals", copy.get(), copy.get())));
    raw.call<void(const KEL*, bool)>("assignConverted", text.get(), false);
    EXPECT_EQ(number->getValue(), 9);
    raw.call<void(const KEL*)>("assign", copy.get());
    EXPECT_EQ(number->getValue(), 7);
    EXPECT_EQ(raw.call<int32_t() const>("getVersion"), 1);
}

TEST(SlotsOfValues, TakeObserversOnAndOff) {
    const auto array = hold(CreateKELArray());
    const auto raw = bySlot<KELInterface_Observable_V1>(*array);
    host::Watcher watcher;
    raw.call<void(KEL_Observer*)>("addObserver", &watcher);
    raw.call<void(JObserver*)>("addObserver", nullptr);
    raw.call<void(JObserver*)>("removeObserver", nullptr);
    array->addInt(int32_t{1});
    EXPECT_EQ(watcher.calls(), 1);
    raw.call<void(KEL_Observer*)>("removeObserver", &watcher);
    array->addInt(int32_t{2});
    EXPECT_EQ(watcher.calls(), 1);
}

TEST(SlotsOfValues, TellAnObserver) {
    host::Watcher watcher;
    const auto number = hold(CreateKELInt(1));
    bySlot<KEL_Observer>(watcher).call<void(KEL*)>("update", number.get());
    ASSERT_EQ(watcher.calls(), 1);
    EXPECT_EQ(watcher.told[0], number.get());
}

/// Calls the five setters that every scalar has by slot. Each setter returns the value itself,
/// which then has the expected text.
template <class Interface, class Kind>
void expectSetters(Kind& value, const std::vector<std::string>& texts) {
    const auto raw = bySlot<Interface>(value);
    const JHashCode guid(12);
    EXPECT_EQ(raw.template call<Kind*(bool)>("setBoolean", true), &value);
    EXPECT_EQ(value.toString(), texts[0]);
    EXPECT_EQ(raw.template call<Kind*(int32_t)>("setInt", 5), &value);
    EXPECT_EQ(value.toString(), texts[1]);
    EXPECT_EQ(raw.template call<Kind*(double)>("setDouble", 2.5), &value);
    EXPECT_EQ(value.toString(), texts[2]);
    EXPECT_EQ(raw.template call<Kind*(const char*)>("setString", "1"), &value);
    EXPECT_EQ(value.toString(), texts[3]);
    EXPECT_EQ(raw.template call<Kind*(const JHashCode&)>("setguid", guid), &value);
    EXPECT_EQ(value.toString(), texts[4]);
}

TEST(SlotsOfValues, SetAnInt) {
    const auto value = hold(CreateKELInt(0));
    const auto raw = bySlot<KELInterface_Int_V1>(*value);
    raw.call<void(int32_t)>("setValue", -8);
    EXPECT_EQ(raw.call<int32_t() const>("getValue"), -8);
    expectSetters<KELInterface_Int_V1>(*value, {"1", "5", "2", "1", "12"});
}

TEST(SlotsOfValues, SetABoolean) {
    const auto value = hold(CreateKELBoolean(false));
    const auto raw = bySlot<KELInterface_Boolean_V1>(*value);
    raw.call<void(bool)>("setValue", true);
    EXPECT_TRUE(raw.call<bool() const>("getValue"));
    expectSetters<KELInterface_Boolean_V1>(*value, {"true", "false", "false", "true", "true"});
}

TEST(SlotsOfValues, SetADouble) {
    const auto value = hold(CreateKELDouble(0.0));
    const auto raw = bySlot<KELInterface_Double_V1>(*value);
    raw.call<void(double)>("setValue", 0.25);
    EXPECT_EQ(raw.call<double() const>("getValue"), 0.25);
    expectSetters<KELInterface_Double_V1>(
        *value, {"1.000000", "5.000000", "2.500000", "1.000000", "12.000000"});
}

TEST(SlotsOfValues, SetAGuid) {
    const auto value = hold(CreateKELGuid());
    const auto raw = bySlot<KELInterface_guid_V1>(*value);
    const std::string tail = "-0000-0000-0000-000000000000";
    const JHashCode given(1, 2, 3, 4);
    JHashCode out;
    raw.call<void(const JHashCode&)>("setValue", given);
    EXPECT_EQ(raw.call<JHashCode&(JHashCode&) const>("getValue", out), given);
    expectSetters<KELInterface_guid_V1>(*value,
                                        {"00000001" + tail, "00000005" + tail, "00000002" + tail,
                                         "00000001" + tail, "0000000C" + tail});
}

TEST(SlotsOfValues, SetAString) {
    const auto value = hold(CreateKELString(""));
    const auto raw = bySlot<KELInterface_String_V1>(*value);
    raw.call<void(const char*)>("setValue", "slots");
    EXPECT_STREQ(raw.call<const char*() const>("getValue"), "slots");
    EXPECT_EQ(raw.call<char(int32_t) const>("getChar", 1), 'l');
    expectSetters<KELInterface_String_V1>(
        *value, {"true", "5", "2.500000", "1", "0000000C-0000-0000-0000-000000000000"});
}

TEST(SlotsOfValues, ReadAndWriteAMemoryBlock) {
    const auto block = hold(CreateKELMemBlock(4, "abcd"));
    const auto raw = bySlot<KELInterface_MemBlock_V1>(*block);
    char bytes[3] = "";
    raw.call<void(int32_t, const void*, int32_t)>("write", 1, "XY", 2);
    raw.call<void(int32_t, void*, int32_t)>("read", 0, bytes, 2);
    EXPECT_STREQ(bytes, "aX");
    EXPECT_EQ(raw.call<int32_t() const>("getSize"), 4);
}

TEST(SlotsOfValues, ThrowWhatTheOperationThrows) {
    const auto text = hold(CreateKELString("ab"));
    const auto raw = bySlot<KELInterface_String_V1>(*text);
    EXPECT_EQ(host::thrownMessage<KELArrayIndexOutOfBoundsException>(
                  [&] { raw.call<char(int32_t) const>("getChar", 2); }),
              "Attemping to reference past end of string.");
}

} // namespace
