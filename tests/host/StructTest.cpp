// Structs and their lists of names, each operation called through the interface.
#include "Host.h"

namespace {

using host::Held;
using host::hold;
using host::referencesOf;
using host::thrownMessage;

using Names = std::vector<std::string>;

Names rest(StringEnumerationInterface_V1& names) {
    Names found;
    while (names.hasMoreElements()) {
        found.emplace_back(names.nextElement());
    }
    return found;
}

/// A struct, the same through its interface, and a value.
class HostStruct : public ::testing::Test {
protected:
    Names names() const { return rest(*hold(constant.getVarNames())); }
    std::string text(const char* name) const { return hold(constant.getString(name))->getValue(); }

    Held<KEL_Struct> owner = hold(CreateKELStruct());
    KELInterface_Struct_V1& structure = *owner;
    const KELInterface_Struct_V1& constant = *owner;
    Held<KEL_Int> seven = hold(CreateKELInt(7));
};

TEST_F(HostStruct, PuttersStoreVariables) {
    structure.putString("string", "text");
    structure.putguid("guid", JHashCode(5));
    structure.putDouble("float", 2.5F);
    structure.putDouble("double", 2.5);
    structure.putInt("long", 1L);
    structure.putInt("unsigned", 2UL);
    structure.putInt("int", 3);
    structure.putBoolean("boolean", true);
    structure.addVar("var", seven.get());
    EXPECT_EQ(structure.getCount(), 9);
    EXPECT_EQ(names(), (Names{"boolean", "double", "float", "guid", "int", "long", "string",
                              "unsigned", "var"}));
}

TEST_F(HostStruct, GetVarOwnsOrBorrows) {
    structure.addVar("x", seven.get());
    EXPECT_EQ(constant.getVar("x"), seven.get());
    EXPECT_EQ(referencesOf(*seven), 2);
    const auto owned = hold(structure.getVar("x"));
    EXPECT_EQ(owned.get(), seven.get());
    EXPECT_EQ(referencesOf(*seven), 3);
}

TEST_F(HostStruct, GettersConvert) {
    JHashCode guid;
    structure.putDouble("x", 0.5);
    EXPECT_TRUE(constant.getBoolean("x"));
    EXPECT_EQ(constant.getInt("x"), 0);
    EXPECT_EQ(constant.getDouble("x"), 0.5);
    EXPECT_EQ(text("x"), "0.500000");
    EXPECT_EQ(constant.getguid("x", guid), JHashCode());
}

TEST_F(HostStruct, SettersConvertIntoTheVariable) {
    structure.putString("x", "text");
    structure.setInt("x", 5);
    EXPECT_EQ(text("x"), "5");
    structure.setInt("x", 6L);
    structure.setInt("x", 7UL);
    EXPECT_EQ(text("x"), "7");
    structure.setDouble("x", 1.5F);
    structure.setDouble("x", 2.5);
    EXPECT_EQ(text("x"), "2.500000");
    structure.setBoolean("x", false);
    EXPECT_EQ(text("x"), "false");
    structure.setguid("x", JHashCode(1));
    structure.setString("x", "abc");
    EXPECT_EQ(text("x"), "abc");
    structure.setVarValue("x", seven.get());
    EXPECT_EQ(text("x"), "7");
    EXPECT_EQ(constant.getVar("x")->getType(), KELKind_String);
}

TEST_F(HostStruct, VariablesAreReplacedRenamedAndRemoved) {
    structure.putInt("b", 1);
    structure.setVar("b", seven.get());
    EXPECT_EQ(constant.getVar("b"), seven.get());
    structure.renameVar("b", "a");
    EXPECT_TRUE(constant.containsVar("a"));
    EXPECT_FALSE(constant.containsVar("b"));
    structure.removeVar("a");
    EXPECT_EQ(structure.getCount(), 0);
    structure.putInt("c", 1);
    structure.removeAllVars();
    EXPECT_EQ(structure.getCount(), 0);
}

TEST_F(HostStruct, AVariableMayHoldNull) {
    structure.addVar("x", nullptr);
    EXPECT_TRUE(constant.containsVar("x"));
    EXPECT_EQ(constant.getVar("x"), nullptr);
    structure.setVarValue("x", seven.get());
    EXPECT_EQ(constant.getVar("x"), seven.get());
}

TEST_F(HostStruct, AnotherStructIsAdded) {
    const auto other = hold(CreateKELStruct());
    other->addVar("x", seven.get());
    EXPECT_EQ(structure.addVars(other.get()), 0);
    EXPECT_EQ(structure.addVars(nullptr), -1);
    EXPECT_EQ(constant.getVar("x"), seven.get());
}

TEST_F(HostStruct, UnknownNamesAreRefused) {
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { structure.getVar("x"); }),
              "KEL_Struct_Impl. Cannot get variable - unknown variable name.");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { structure.removeVar("x"); }),
              "KEL_Struct_Impl. Cannot remove variable - name does not exist.");
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { structure.renameVar("x", "y"); }),
              "KEL_Struct: Cannot rename variable - name does not exist.");
}

TEST_F(HostStruct, NamesThatCannotBeUsedAreRefused) {
    structure.putInt("x", 1);
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { structure.putInt("a\"b", 1); }),
              "KEL_Struct key can't contain a \"");
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { structure.renameVar("x", "x"); }),
              "KEL_Struct: Cannot rename variable - new name already exists.");
    structure.putInt("", 1);
    structure.putInt(nullptr, 1);
    EXPECT_EQ(names(), (Names{"x"}));
}

TEST_F(HostStruct, NamesAreAListOfTheHosts) {
    structure.putInt("a", 1);
    structure.putInt("b", 2);
    const auto owned = hold(structure.getVarNames());
    StringEnumerationInterface_V1& list = *owned;
    EXPECT_EQ(list.getCount(), 2);
    EXPECT_TRUE(list.contains("a"));
    list.add("c");
    list.remove("a");
    EXPECT_EQ(rest(list), (Names{"b", "c"}));
    list.reset();
    EXPECT_STREQ(list.nextElement(), "b");
    EXPECT_EQ(names(), (Names{"a", "b"}));
}

TEST_F(HostStruct, ListsOfNamesAreAddedToEachOther) {
    structure.putInt("a", 1);
    const auto list = hold(structure.getVarNames());
    structure.putInt("b", 1);
    list->addAll(hold(structure.getVarNames()).get());
    EXPECT_EQ(rest(*list), (Names{"a", "b"}));
}

TEST_F(HostStruct, AListOfNamesIsCountedAndHasAnIdentity) {
    JHashCode first;
    JHashCode second;
    const auto list = hold(structure.getVarNames());
    list->addRef();
    EXPECT_EQ(list->getRefCount(), 1);
    EXPECT_EQ(list->release(), 1);
    EXPECT_NE(list->getHashCode(first), hold(structure.getVarNames())->getHashCode(second));
}

TEST_F(HostStruct, AListThatNeverHeldANameRaises) {
    const auto list = hold(structure.getVarNames());
    EXPECT_FALSE(list->hasMoreElements());
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { list->nextElement(); }),
              "Enumeration is empty.");
}

} // namespace
