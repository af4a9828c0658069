// The typed getters and setters of structs.
#include "support/Held.h"
#include "support/Watcher.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::referencesOf;
using kel::test::Watcher;

const JHashCode sample(0x3F2504E0U, 0x11D34F89U, 0x05030C9AU, 0x01332CE8U);

/// A struct with one variable of each scalar kind, a null and an inner struct, each under its name.
class KEL_StructTyped : public ::testing::Test {
protected:
    KEL_StructTyped() {
        structure->putInt("int", 2);
        structure->putBoolean("boolean", true);
        structure->putDouble("double", 0.5);
        structure->putguid("guid", JHashCode(5));
        structure->putString("string", "12abc");
        structure->addVar("null", nullptr);
        structure->addVar("struct", make<KEL_Struct_Impl>().get());
        structure->addObserver(&watcher);
    }

    std::string text(const char* name) const {
        const Held<KEL_String> string(structure->getString(name));
        return string ? string->getValue() : "(null)";
    }

    JHashCode guid(const char* name) const {
        JHashCode out(9, 9, 9, 9);
        return structure->getguid(name, out);
    }

    KEL* var(const char* name) const { return std::as_const(*structure).getVar(name); }
    int32_t kind(const char* name) const { return var(name)->getType(); }

    Watcher watcher;
    Held<KEL_Struct_Impl> structure = make<KEL_Struct_Impl>();
};

TEST_F(KEL_StructTyped, GetBooleanConvertsByKind) {
    EXPECT_TRUE(structure->getBoolean("int"));
    EXPECT_TRUE(structure->getBoolean("boolean"));
    EXPECT_TRUE(structure->getBoolean("double"));
    EXPECT_TRUE(structure->getBoolean("guid"));
    EXPECT_TRUE(structure->getBoolean("string"));
    EXPECT_FALSE(structure->getBoolean("null"));
    EXPECT_FALSE(structure->getBoolean("struct"));
}

TEST_F(KEL_StructTyped, GetIntConvertsByKind) {
    EXPECT_EQ(structure->getInt("int"), 2);
    EXPECT_EQ(structure->getInt("boolean"), 1);
    EXPECT_EQ(structure->getInt("double"), 0);
    EXPECT_EQ(structure->getInt("guid"), 5);
    EXPECT_EQ(structure->getInt("string"), 12);
    EXPECT_EQ(structure->getInt("null"), 0);
    EXPECT_EQ(structure->getInt("struct"), 0);
}

TEST_F(KEL_StructTyped, GetDoubleConvertsByKind) {
    EXPECT_EQ(structure->getDouble("int"), 2.0);
    EXPECT_EQ(structure->getDouble("boolean"), 1.0);
    EXPECT_EQ(structure->getDouble("double"), 0.5);
    EXPECT_EQ(structure->getDouble("guid"), 5.0);
    EXPECT_EQ(structure->getDouble("string"), 12.0);
    EXPECT_EQ(structure->getDouble("null"), 0.0);
    EXPECT_EQ(structure->getDouble("struct"), 0.0);
}

TEST_F(KEL_StructTyped, GetStringConvertsByKind) {
    EXPECT_EQ(text("int"), "2");
    EXPECT_EQ(text("boolean"), "true");
    EXPECT_EQ(text("double"), "0.500000");
    EXPECT_EQ(text("guid"), "00000005-0000-0000-0000-000000000000");
    EXPECT_EQ(text("string"), "12abc");
    EXPECT_EQ(text("null"), "(null)");
    EXPECT_EQ(text("struct"), "(null)");
}

TEST_F(KEL_StructTyped, GetStringOfAStringIsTheValueWithAReference) {
    const Held<KEL_String> string(structure->getString("string"));
    EXPECT_EQ(static_cast<KEL*>(string.get()), var("string"));
    EXPECT_EQ(referencesOf(*string), 2);
}

TEST_F(KEL_StructTyped, GetguidConvertsByKindAndReturnsItsArgument) {
    JHashCode out;
    EXPECT_EQ(&structure->getguid("guid", out), &out);
    EXPECT_EQ(guid("int"), JHashCode(2));
    EXPECT_EQ(guid("boolean"), JHashCode(1));
    EXPECT_EQ(guid("double"), JHashCode());
    EXPECT_EQ(guid("guid"), JHashCode(5));
    EXPECT_EQ(guid("string"), JHashCode(12));
    EXPECT_EQ(guid("null"), JHashCode());
    EXPECT_EQ(guid("struct"), JHashCode());
}

TEST_F(KEL_StructTyped, PutIntOnAStringReplacesItByAnInt) {
    structure->putInt("string", 5);
    EXPECT_EQ(kind("string"), KELKind_Int);
    EXPECT_EQ(structure->getInt("string"), 5);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_StructTyped, SetIntOnAStringKeepsAString) {
    const KEL* before = var("string");
    structure->setInt("string", 5);
    EXPECT_EQ(var("string"), before);
    EXPECT_EQ(text("string"), "5");
}

TEST_F(KEL_StructTyped, PuttersStoreANewValueOfTheirKind) {
    structure->putString("new 1", "x");
    structure->putguid("new 2", sample);
    structure->putDouble("new 3", 2.5);
    structure->putDouble("new 4", 0.25F);
    structure->putInt("new 5", 7);
    structure->putInt("new 6", static_cast<long>(4294967304));
    structure->putInt("new 7", static_cast<unsigned long>(4294967305));
    structure->putBoolean("new 8", true);
    EXPECT_EQ(watcher.calls(), 8);
    EXPECT_EQ(kind("new 1"), KELKind_String);
    EXPECT_EQ(guid("new 2"), sample);
    EXPECT_EQ(kind("new 3"), KELKind_Double);
    EXPECT_EQ(structure->getDouble("new 4"), 0.25);
    EXPECT_EQ(kind("new 5"), KELKind_Int);
    EXPECT_EQ(structure->getInt("new 6"), 8);
    EXPECT_EQ(structure->getInt("new 7"), 9);
    EXPECT_EQ(kind("new 8"), KELKind_Boolean);
}

TEST_F(KEL_StructTyped, PutStringOfNullStoresAnEmptyString) {
    structure->putString("new", nullptr);
    EXPECT_EQ(kind("new"), KELKind_String);
    EXPECT_EQ(text("new"), "");
}

TEST_F(KEL_StructTyped, PuttersHoldTheOnlyReference) {
    structure->putInt("new", 1);
    EXPECT_EQ(referencesOf(*var("new")), 1);
}

TEST_F(KEL_StructTyped, SettersConvertIntoTheVariablesKind) {
    structure->setString("int", "34x");
    EXPECT_EQ(structure->getInt("int"), 34);
    structure->setDouble("int", -2.7);
    EXPECT_EQ(structure->getInt("int"), -2);
    structure->setDouble("double", 0.25F);
    EXPECT_EQ(structure->getDouble("double"), 0.25);
    structure->setguid("string", sample);
    EXPECT_EQ(text("string"), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
    structure->setguid("guid", sample);
    EXPECT_EQ(guid("guid"), sample);
    structure->setBoolean("string", false);
    EXPECT_EQ(text("string"), "false");
    structure->setInt("boolean", 2);
    EXPECT_TRUE(structure->getBoolean("boolean"));
}

TEST_F(KEL_StructTyped, SetIntTakesTheLow32BitsOfWiderIntegers) {
    structure->setInt("int", static_cast<long>(4294967303));
    EXPECT_EQ(structure->getInt("int"), 7);
    structure->setInt("int", static_cast<unsigned long>(4294967304));
    EXPECT_EQ(structure->getInt("int"), 8);
}

TEST_F(KEL_StructTyped, SettersNotifyTheValueOnceAndNotTheStruct) {
    Watcher inner;
    dynamic_cast<KEL_Observable*>(var("int"))->addObserver(&inner);
    structure->setInt("int", 3);
    structure->setVarValue("int", make<KEL_Boolean_Impl>(true).get());
    EXPECT_EQ(inner.calls(), 2);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTyped, SetVarValueOnANullVariableStoresTheObjectItself) {
    const auto value = make<KEL_Int_Impl>(7);
    structure->setVarValue("null", value.get());
    EXPECT_EQ(var("null"), value.get());
    EXPECT_EQ(watcher.calls(), 2); // as addVar of a name that exists
}

TEST_F(KEL_StructTyped, SettersOnANullVariableStoreANewValue) {
    structure->setString("null", "x");
    EXPECT_EQ(kind("null"), KELKind_String);
    EXPECT_EQ(text("null"), "x");
    EXPECT_EQ(referencesOf(*var("null")), 1);
}

TEST_F(KEL_StructTyped, SetVarValueOfNullOrOfANullNameDoesNothing) {
    structure->setVarValue("int", nullptr);
    structure->setVarValue("unknown", nullptr);
    structure->setVarValue(nullptr, var("int"));
    structure->setString("int", nullptr);
    structure->setString("unknown", nullptr);
    structure->setString(nullptr, "x");
    structure->setInt(nullptr, 1);
    EXPECT_EQ(structure->getInt("int"), 2);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTyped, SettersIntoAKindWithoutTheFormChangeNothing) {
    Watcher inner;
    dynamic_cast<KEL_Observable*>(var("struct"))->addObserver(&inner);
    structure->setInt("struct", 5);
    structure->setVarValue("int", var("struct"));
    EXPECT_EQ(kind("struct"), KELKind_Struct);
    EXPECT_EQ(structure->getInt("int"), 2);
    EXPECT_EQ(inner.calls(), 0);
}

TEST_F(KEL_StructTyped, SetVarValueOfAStructTakesADeepCopy) {
    const auto source = make<KEL_Struct_Impl>();
    source->putInt("x", 1);
    structure->setVarValue("struct", source.get());
    source->setInt("x", 2);
    EXPECT_EQ(dynamic_cast<KEL_Struct*>(var("struct"))->getInt("x"), 1);
}

} // namespace
