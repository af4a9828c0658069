// Calls variable descriptors and checked structs by slot.
#include "Host.h"
#include "RawSlots.h"

namespace {

using host::bySlot;
using host::hold;
using host::thrownMessage;

class SlotsOfADescriptor : public testing::Test {
protected:
    /// States a property that no setter adds.
    void state(const char* name, KEL* value) {
        const auto mine = hold(value);
        rules->addVar(name, mine.get());
    }

    void allowNothing() { state("enum", CreateKELArray()); }
    void limit(int32_t min, int32_t max) {
        state("min", CreateKELInt(min));
        state("max", CreateKELInt(max));
    }
    std::string text(const char* name) const {
        const KEL_Struct& fields = *rules;
        return fields.getVar(name)->toString();
    }

    host::Held<MetaKelVarDescriptor> rules = hold(CreateMetaKelVarDescriptor());
    host::BySlot<MetaKelVarDescriptorInterface_V1> raw =
        bySlot<MetaKelVarDescriptorInterface_V1>(*rules);
    host::Held<KEL_Int> five = hold(CreateKELInt(5));
    host::Held<KEL_String> word = hold(CreateKELString("word"));
};

TEST_F(SlotsOfADescriptor, Ranges) {
    const auto nine = hold(CreateKELInt(9));
    rules->setType(KELKind_Int);
    limit(0, 0);
    EXPECT_TRUE(raw.call<bool() const>("isRanged"));
    raw.call<void(double, double)>("setRange", 1.5, 2.5);
    EXPECT_EQ(text("min") + " " + text("max"), "1.500000 2.500000");
    raw.call<void(int32_t, int32_t)>("setRange", 3, 4);
    EXPECT_EQ(text("min") + " " + text("max"), "3 4");
    raw.call<void(KEL*, KEL*)>("setRange", five.get(), nine.get());
    EXPECT_EQ(raw.call<KEL*() const>("getMin"), five.get());
    EXPECT_EQ(raw.call<KEL*() const>("getMax"), nine.get());
    EXPECT_TRUE(raw.call<bool(double) const>("inRange", 9.5));
    EXPECT_FALSE(raw.call<bool(double) const>("inRange", 10.5));
    EXPECT_TRUE(raw.call<bool(int32_t) const>("inRange", 7));
    EXPECT_FALSE(raw.call<bool(int32_t) const>("inRange", 4));
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("inRange", five.get()));
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("isValid", nine.get()));
}

TEST_F(SlotsOfADescriptor, AddAllowedValues) {
    allowNothing();
    raw.call<void(bool)>("addEnumValue", true);
    raw.call<void(const char*)>("addEnumValue", "text");
    raw.call<void(double)>("addEnumValue", 1.5);
    raw.call<void(int32_t)>("addEnumValue", 7);
    raw.call<void(KEL*)>("addEnumValue", five.get());
    EXPECT_TRUE(raw.call<bool() const>("isEnumerated"));
    KEL_Array* const allowed = raw.call<KEL_Array*() const>("getEnum");
    std::string kinds;
    for (int32_t i = 0; i < allowed->getCount(); ++i) {
        kinds.append(std::to_string(allowed->getVar(i)->getType())).append(" ");
    }
    EXPECT_EQ(kinds, "2 6 3 1 1 ");
    EXPECT_EQ(allowed->getVar(4), five.get());
}

TEST_F(SlotsOfADescriptor, FindAllowedValuesByType) {
    allowNothing();
    EXPECT_FALSE(raw.call<bool(bool) const>("inEnum", true));
    rules->addEnumValue(true);
    EXPECT_TRUE(raw.call<bool(bool) const>("inEnum", true));
    EXPECT_FALSE(raw.call<bool(const char*) const>("inEnum", "word"));
    rules->addEnumValue("word");
    EXPECT_TRUE(raw.call<bool(const char*) const>("inEnum", "word"));
    EXPECT_FALSE(raw.call<bool(double) const>("inEnum", 1.5));
    rules->addEnumValue(1.5);
    EXPECT_TRUE(raw.call<bool(double) const>("inEnum", 1.5));
    EXPECT_FALSE(raw.call<bool(int32_t) const>("inEnum", 5));
    rules->addEnumValue(int32_t{5});
    EXPECT_TRUE(raw.call<bool(int32_t) const>("inEnum", 5));
    EXPECT_TRUE(raw.call<bool(const KEL*) const>("inEnum", word.get()));
}

TEST_F(SlotsOfADescriptor, RemoveAllowedValues) {
    allowNothing();
    const auto count = [this] { return rules->getEnum()->getCount(); };
    rules->addEnumValue(true);
    rules->addEnumValue("word");
    rules->addEnumValue(1.5);
    rules->addEnumValue(int32_t{7});
    rules->addEnumValue(five.get());
    raw.call<void(bool)>("removeEnumValue", true);
    EXPECT_EQ(count(), 4);
    raw.call<void(const char*)>("removeEnumValue", "word");
    EXPECT_EQ(count(), 3);
    raw.call<void(double)>("removeEnumValue", 1.5);
    EXPECT_EQ(count(), 2);
    raw.call<void(int32_t)>("removeEnumValue", 7);
    EXPECT_EQ(count(), 1);
    raw.call<void(const KEL*)>("removeEnumValue", five.get());
    EXPECT_EQ(count(), 0);
}

TEST_F(SlotsOfADescriptor, ReplaceTheDefaultByType) {
    state("default", CreateKELInt(0));
    EXPECT_TRUE(raw.call<bool() const>("hasDefault"));
    raw.call<void(bool)>("setDefault", true);
    EXPECT_EQ(text("default"), "true");
    raw.call<void(const char*)>("setDefault", "t");
    EXPECT_EQ(text("default"), "t");
    raw.call<void(double)>("setDefault", 1.5);
    EXPECT_EQ(text("default"), "1.500000");
    raw.call<void(int32_t)>("setDefault", 7);
    EXPECT_EQ(text("default"), "7");
    raw.call<void(KEL*)>("setDefault", five.get());
    EXPECT_EQ(raw.call<KEL*() const>("getDefault"), five.get());
    raw.call<void()>("removeDefault");
    EXPECT_FALSE(rules->hasDefault());
}

TEST_F(SlotsOfADescriptor, AdornBefore) {
    state("preadorn", CreateKELString(""));
    EXPECT_TRUE(raw.call<bool() const>("hasPreadorn"));
    raw.call<void(const char*)>("setPreadorn", "about");
    EXPECT_STREQ(raw.call<const char*() const>("getPreadorn"), "about");
    raw.call<void(KEL*)>("setPreadorn", word.get());
    EXPECT_STREQ(rules->getPreadorn(), "word");
    raw.call<void()>("removePreadorn");
    EXPECT_FALSE(rules->hasPreadorn());
}

TEST_F(SlotsOfADescriptor, AdornBehind) {
    state("postadorn", CreateKELString(""));
    EXPECT_TRUE(raw.call<bool() const>("hasPostadorn"));
    raw.call<void(const char*)>("setPostadorn", "per cent");
    EXPECT_STREQ(raw.call<const char*() const>("getPostadorn"), "per cent");
    raw.call<void(KEL*)>("setPostadorn", word.get());
    EXPECT_STREQ(rules->getPostadorn(), "word");
    raw.call<void()>("removePostadorn");
    EXPECT_FALSE(rules->hasPostadorn());
}

TEST_F(SlotsOfADescriptor, WrapAndInterpolate) {
    const auto no = hold(CreateKELBoolean(false));
    raw.call<void(bool)>("setWrapped", true);
    EXPECT_TRUE(raw.call<bool() const>("getWrapped"));
    raw.call<void(const KEL*)>("setWrapped", no.get());
    EXPECT_FALSE(rules->getWrapped());
    EXPECT_TRUE(raw.call<bool() const>("hasWrapped"));
    raw.call<void()>("removeWrapped");
    EXPECT_FALSE(rules->hasWrapped());
    raw.call<void(bool)>("setInterpolated", true);
    raw.call<void(const KEL*)>("setInterpolated", no.get());
    EXPECT_FALSE(raw.call<bool() const>("getInterpolated"));
    EXPECT_TRUE(raw.call<bool() const>("hasInterpolated"));
    raw.call<void()>("removeInterpolated");
    EXPECT_FALSE(rules->hasInterpolated());
}

TEST_F(SlotsOfADescriptor, Step) {
    raw.call<void(double)>("setStepsize", 0.5);
    EXPECT_EQ(raw.call<double() const>("getStepsize"), 0.5);
    raw.call<void(int32_t)>("setStepsize", 2);
    EXPECT_EQ(rules->getStepsize(), 2.0);
    raw.call<void(const KEL*)>("setStepsize", five.get());
    EXPECT_EQ(rules->getStepsize(), 5.0);
    EXPECT_TRUE(raw.call<bool() const>("hasStepsize"));
    raw.call<void()>("removeStepsize");
    EXPECT_FALSE(rules->hasStepsize());
}

TEST_F(SlotsOfADescriptor, HaveATypeThatIsNotTheirKind) {
    raw.call<void(int32_t)>("setType", KELKind_Double);
    EXPECT_EQ(raw.call<int32_t() const>("getVariableType"), KELKind_Double);
    EXPECT_EQ(bySlot<KELInterface_RefCount_V1>(*rules).call<int32_t() const>("getType"),
              KELKind_MetaKelVarDescriptor);
    EXPECT_EQ(raw.call<KEL_Struct*() const>("getStruct")->getCount(), 1);
}

TEST_F(SlotsOfADescriptor, TurnRangesIntoEnumerationsAndBack) {
    rules->setType(KELKind_Double);
    limit(1, 2);
    raw.call<void(KEL*)>("enumerationFromRange", five.get());
    EXPECT_EQ(rules->getEnum()->getCount(), 3);
    raw.call<void()>("rangeFromEnumeration");
    EXPECT_EQ(rules->getMax()->toDouble(), 5.0);
}

TEST_F(SlotsOfADescriptor, GuardEnumerationLists) {
    allowNothing();
    rules->setType(KELKind_Int);
    EXPECT_EQ(
        thrownMessage<KELException>([&] { raw.call<void(KEL*)>("addEnumerationList", nullptr); }),
        "Can only add enumeration list to a KEL_String");
    EXPECT_EQ(thrownMessage<KELException>([&] { raw.call<void()>("removeEnumerationList"); }),
              "Can only remove enumeration list from a KEL_String");
}

TEST_F(SlotsOfADescriptor, AreUsedByACheckedStruct) {
    const auto meta = hold(CreateMetaKel(nullptr));
    const auto descriptor = hold(CreateMetaKelDescriptor());
    const auto checked = bySlot<MetaKelInterface_V1>(*meta);
    checked.call<void(MetaKelDescriptor*)>("setDescriptor", descriptor.get());
    EXPECT_EQ(checked.call<MetaKelDescriptor*() const>("getDescriptor"), descriptor.get());
    checked.call<void(const char*, KEL*, MetaKelVarDescriptor*)>("createVar", "v", five.get(),
                                                                 rules.get());
    EXPECT_TRUE(meta->containsVar("v"));
    checked.call<void(const char*)>("clearVar", "v");
    EXPECT_EQ(static_cast<const KEL_Struct&>(*meta).getVar("v"), nullptr);
    checked.call<void()>("removeDescriptor");
    checked.call<void(MetaKelDescriptor*)>("replaceDescriptor", descriptor.get());
    EXPECT_EQ(meta->getDescriptor(), nullptr);
}

TEST_F(SlotsOfADescriptor, AreMadeByACheckedStruct) {
    const auto meta = hold(CreateMetaKel(nullptr));
    const auto raw50 = bySlot<MetaKel>(*meta);
    const auto allowed = hold(CreateKELArray());
    allowed->addVar(five.get());
    raw50.call<void(const char*, KEL*)>("createVarWithType", "t", five.get());
    raw50.call<void(const char*, KEL*, KEL*)>("createVarWithDefault", "d", nullptr, five.get());
    raw50.call<void(const char*, KEL*, KEL_Array*)>("createVarWithEnum", "e", five.get(),
                                                    allowed.get());
    EXPECT_TRUE(meta->containsVar("t"));
    EXPECT_TRUE(meta->containsVar("e"));
    EXPECT_FALSE(meta->containsVar("d"));
    EXPECT_EQ(raw50.call<KEL*(const char*, bool)>("getVar", "d", true), five.get());
    EXPECT_TRUE(meta->containsVar("d"));
}

} // namespace
