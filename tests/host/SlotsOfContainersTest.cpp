// Calls arrays, structs and managers by slot.
#include "Host.h"
#include "RawSlots.h"

namespace {

using host::bySlot;
using host::hold;
using host::referencesOf;

class SlotsOfAnArray : public testing::Test {
protected:
    host::Held<KEL_Array> array = hold(CreateKELArray());
    host::BySlot<KELInterface_Array_V1> raw = bySlot<KELInterface_Array_V1>(*array);

    int32_t kindAt(int32_t index) const { return array->getVar(index)->getType(); }
};

TEST_F(SlotsOfAnArray, AddEveryType) {
    EXPECT_EQ(raw.call<int32_t(const char*)>("addString", "a"), 0);
    EXPECT_EQ(raw.call<int32_t(const JHashCode&)>("addguid", JHashCode(2)), 1);
    EXPECT_EQ(raw.call<int32_t(float)>("addDouble", 1.5F), 2);
    EXPECT_EQ(raw.call<int32_t(double)>("addDouble", 2.5), 3);
    EXPECT_EQ(raw.call<int32_t(long)>("addInt", 4L), 4);
    EXPECT_EQ(raw.call<int32_t(unsigned long)>("addInt", 5UL), 5);
    EXPECT_EQ(raw.call<int32_t(int32_t)>("addInt", 6), 6);
    EXPECT_EQ(raw.call<int32_t(bool)>("addBoolean", true), 7);
    EXPECT_EQ(raw.call<int32_t() const>("getCount"), 8);
    EXPECT_EQ(raw.call<double(int32_t) const>("getDouble", 2), 1.5);
    EXPECT_EQ(raw.call<double(int32_t) const>("getDouble", 3), 2.5);
    EXPECT_EQ(raw.call<int32_t(int32_t) const>("getInt", 4), 4);
    EXPECT_EQ(raw.call<int32_t(int32_t) const>("getInt", 5), 5);
    EXPECT_EQ(raw.call<int32_t(int32_t) const>("getInt", 6), 6);
    EXPECT_EQ(kindAt(0), KELKind_String);
    EXPECT_EQ(kindAt(1), KELKind_guid);
    EXPECT_EQ(kindAt(7), KELKind_Boolean);
}

TEST_F(SlotsOfAnArray, SetEveryType) {
    JHashCode guid;
    array->addDouble(0.0);
    array->addguid(JHashCode());
    raw.call<void(int32_t, float)>("setDouble", 0, 1.5F);
    EXPECT_EQ(array->getDouble(0), 1.5);
    raw.call<void(int32_t, double)>("setDouble", 0, 2.5);
    EXPECT_EQ(array->getDouble(0), 2.5);
    raw.call<void(int32_t, long)>("setInt", 0, 3L);
    EXPECT_EQ(array->getDouble(0), 3.0);
    raw.call<void(int32_t, unsigned long)>("setInt", 0, 4UL);
    EXPECT_EQ(array->getDouble(0), 4.0);
    raw.call<void(int32_t, int32_t)>("setInt", 0, 5);
    EXPECT_EQ(array->getDouble(0), 5.0);
    raw.call<void(int32_t, const char*)>("setString", 0, "6");
    EXPECT_EQ(array->getDouble(0), 6.0);
    raw.call<void(int32_t, bool)>("setBoolean", 0, true);
    EXPECT_EQ(array->getDouble(0), 1.0);
    raw.call<void(int32_t, const JHashCode&)>("setguid", 1, JHashCode(1, 2, 3, 4));
    EXPECT_EQ(raw.call<JHashCode&(int32_t, JHashCode&) const>("getguid", 1, guid),
              JHashCode(1, 2, 3, 4));
}

TEST_F(SlotsOfAnArray, PlaceAndRemoveValues) {
    const auto a = hold(CreateKELInt(1));
    const auto b = hold(CreateKELInt(2));
    const auto other = hold(CreateKELArray());
    raw.call<int32_t(KEL*)>("addVar", a.get());
    raw.call<void(KEL*, int32_t)>("insertVar", b.get(), 0);
    raw.call<void(int32_t, int32_t)>("swapVars", 0, 1);
    EXPECT_EQ(raw.call<KEL*(int32_t)>("getVar", 0), a.get());
    EXPECT_EQ(raw.call<KEL*(int32_t) const>("getVar", 1), b.get());
    EXPECT_EQ(raw.call<int32_t(const KEL*) const>("indexOfVar", b.get()), 1);
    raw.call<void(KEL*, int32_t)>("setVar", b.get(), 0);
    EXPECT_FALSE(raw.call<bool(const KEL*) const>("containsVar", a.get()));
    raw.call<void(int32_t, const KEL*)>("setVarValue", 0, a.get());
    EXPECT_EQ(b->getValue(), 1);
    other->addVar(a.get());
    EXPECT_EQ(raw.call<int32_t(KEL_Array*)>("addVars", other.get()), 0);
    raw.call<void(int32_t)>("removeVar", 0);
    EXPECT_EQ(array->getCount(), 2);
    raw.call<void()>("removeAllVars");
    EXPECT_EQ(array->getCount(), 0);
}

TEST_F(SlotsOfAnArray, GetTheOtherTypes) {
    array->addInt(int32_t{1});
    const auto text = hold(raw.call<KEL_String*(int32_t) const>("getString", 0));
    EXPECT_STREQ(text->getValue(), "1");
    EXPECT_TRUE(raw.call<bool(int32_t) const>("getBoolean", 0));
}

class SlotsOfAStruct : public testing::Test {
protected:
    host::Held<KEL_Struct> fields = hold(CreateKELStruct());
    host::BySlot<KELInterface_Struct_V1> raw = bySlot<KELInterface_Struct_V1>(*fields);
};

TEST_F(SlotsOfAStruct, GetAReferenceOrBorrow) {
    const auto value = hold(CreateKELInt(1));
    raw.call<void(const char*, KEL*)>("addVar", "v", value.get());
    EXPECT_EQ(raw.call<KEL*(const char*) const>("getVar", "v"), value.get());
    EXPECT_EQ(referencesOf(*value), 2);
    const host::Held<KEL> mine(raw.call<KEL*(const char*)>("getVar", "v"));
    EXPECT_EQ(referencesOf(*value), 3);
}

TEST_F(SlotsOfAStruct, PutEveryType) {
    JHashCode guid;
    raw.call<void(const char*, const char*)>("putString", "s", "text");
    raw.call<void(const char*, const JHashCode&)>("putguid", "g", JHashCode(9));
    raw.call<void(const char*, float)>("putDouble", "f", 1.5F);
    raw.call<void(const char*, double)>("putDouble", "d", 2.5);
    raw.call<void(const char*, long)>("putInt", "l", 3L);
    raw.call<void(const char*, unsigned long)>("putInt", "u", 4UL);
    raw.call<void(const char*, int32_t)>("putInt", "i", 5);
    raw.call<void(const char*, bool)>("putBoolean", "b", true);
    const auto text = hold(raw.call<KEL_String*(const char*) const>("getString", "s"));
    EXPECT_STREQ(text->getValue(), "text");
    EXPECT_EQ(raw.call<JHashCode&(const char*, JHashCode&) const>("getguid", "g", guid),
              JHashCode(9));
    EXPECT_EQ(raw.call<double(const char*) const>("getDouble", "f"), 1.5);
    EXPECT_EQ(raw.call<double(const char*) const>("getDouble", "d"), 2.5);
    EXPECT_EQ(raw.call<int32_t(const char*) const>("getInt", "l"), 3);
    EXPECT_EQ(raw.call<int32_t(const char*) const>("getInt", "u"), 4);
    EXPECT_EQ(raw.call<int32_t(const char*) const>("getInt", "i"), 5);
    EXPECT_TRUE(raw.call<bool(const char*) const>("getBoolean", "b"));
    EXPECT_EQ(raw.call<int32_t() const>("getCount"), 8);
}

TEST_F(SlotsOfAStruct, SetEveryType) {
    fields->putDouble("d", 0.0);
    const auto value = [this] { return fields->getDouble("d"); };
    raw.call<void(const char*, float)>("setDouble", "d", 1.5F);
    EXPECT_EQ(value(), 1.5);
    raw.call<void(const char*, double)>("setDouble", "d", 2.5);
    EXPECT_EQ(value(), 2.5);
    raw.call<void(const char*, long)>("setInt", "d", 3L);
    EXPECT_EQ(value(), 3.0);
    raw.call<void(const char*, unsigned long)>("setInt", "d", 4UL);
    EXPECT_EQ(value(), 4.0);
    raw.call<void(const char*, int32_t)>("setInt", "d", 5);
    EXPECT_EQ(value(), 5.0);
    raw.call<void(const char*, const char*)>("setString", "d", "6");
    EXPECT_EQ(value(), 6.0);
    raw.call<void(const char*, const JHashCode&)>("setguid", "d", JHashCode(7));
    EXPECT_EQ(value(), 7.0);
    raw.call<void(const char*, bool)>("setBoolean", "d", true);
    EXPECT_EQ(value(), 1.0);
    const auto eight = hold(CreateKELInt(8));
    raw.call<void(const char*, KEL*)>("setVarValue", "d", eight.get());
    EXPECT_EQ(value(), 8.0);
    raw.call<void(const char*, KEL*)>("setVar", "d", eight.get());
    EXPECT_EQ(referencesOf(*eight), 2);
}

TEST_F(SlotsOfAStruct, NameAndRemove) {
    const auto other = hold(CreateKELStruct());
    other->putInt("b", int32_t{2});
    fields->putInt("a", int32_t{1});
    EXPECT_EQ(raw.call<int32_t(KEL_Struct*)>("addVars", other.get()), 0);
    raw.call<void(const char*, const char*)>("renameVar", "b", "c");
    const auto names = hold(raw.call<StringEnumeration*() const>("getVarNames"));
    EXPECT_TRUE(names->contains("c"));
    raw.call<void(const char*)>("removeVar", "a");
    EXPECT_FALSE(raw.call<bool(const char*) const>("containsVar", "a"));
    raw.call<void()>("removeAllVars");
    EXPECT_EQ(fields->getCount(), 0);
}

TEST_F(SlotsOfAStruct, WalkOverVariables) {
    const auto walk = bySlot(dynamic_cast<const KELInterface_Struct_V2&>(*fields));
    KELVarCursor at;
    fields->putInt("a", int32_t{1});
    fields->putInt("b", int32_t{2});
    EXPECT_TRUE(walk.call<bool(KELVarCursor&) const>("nextVar", at));
    EXPECT_STREQ(at.name, "a");
    EXPECT_TRUE(walk.call<bool(KELVarCursor&, const char*) const>("nextVarAfter", at, "a"));
    EXPECT_STREQ(at.name, "b");
    EXPECT_TRUE(walk.call<bool(KELVarCursor&, const char*) const>("findVar", at, "a"));
    EXPECT_EQ(at.value->toInt(), 1);
    walk.call<void(int32_t)>("reserveVars", 100);
    EXPECT_EQ(fields->getCount(), 2);
}

TEST(SlotsOfAManager, KeepValuesByIdentity) {
    const auto manager = hold(CreateKELManager());
    const auto raw = bySlot<KELInterface_Manager_V1>(*manager);
    const JHashCode given(1, 2, 3, 4);
    JHashCode identity;
    const auto made = hold(raw.call<KEL*(int32_t, JHashCode)>("createKel", KELKind_Int, given));
    EXPECT_EQ(made->getHashCode(identity), given);
    raw.call<void(KEL*)>("addKel", made.get());
    EXPECT_TRUE(raw.call<bool(JHashCode) const>("containsKel", given));
    EXPECT_EQ(raw.call<KEL*(JHashCode) const>("getKel", given), made.get());
    EXPECT_EQ(raw.call<KEL*(JHashCode) const>("getKelBase", given), made.get());
    EXPECT_EQ(raw.call<int32_t() const>("size"), 1);
    raw.call<void(JHashCode)>("removeKel", given);
    EXPECT_EQ(manager->size(), 0);
}

TEST(SlotsOfAManager, MakeAValueOfFreshIdentity) {
    const auto manager = hold(CreateKELManager());
    const auto raw = bySlot<KELInterface_Manager_V1>(*manager);
    const auto made = hold(raw.call<KEL*(int32_t)>("createKel", KELKind_Struct));
    EXPECT_EQ(made->getType(), KELKind_Struct);
    manager->addKel(made.get());
    raw.call<void()>("removeAllKels");
    EXPECT_EQ(manager->size(), 0);
}

} // namespace
