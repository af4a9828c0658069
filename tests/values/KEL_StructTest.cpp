// Tests the operations of a struct, for the kinds that offer them unchecked.
#include "meta/KELFactory.h"
#include "support/Held.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::referencesOf;
using kel::test::thrownMessage;
using kel::test::Watcher;

const std::string unknownToGet = "KEL_Struct_Impl. Cannot get variable - unknown variable name.";
const std::string unknownToChange =
    "KEL_Struct_Impl. Cannot remove variable - name does not exist.";
const std::string quoteInName = "KEL_Struct key can't contain a \"";

using Names = std::vector<std::string>;

Names namesOf(const KEL_Struct& structure) {
    const Held<StringEnumeration> names(structure.getVarNames());
    Names found;
    while (names->hasMoreElements()) {
        found.emplace_back(names->nextElement());
    }
    return found;
}

/// A struct or a descriptor, which is a struct too, watched, and values of the test's own.
class StructOperations : public ::testing::TestWithParam<KELKind> {
protected:
    StructOperations() { structure->addObserver(&watcher); }

    /// Adds Ints under the names and forgets the notifications.
    void fill(std::initializer_list<std::pair<const char*, int32_t>> variables) {
        for (const auto& [name, value] : variables) {
            structure->putInt(name, value);
        }
        watcher.told.clear();
    }

    Names names() const { return namesOf(*structure); }

    /// Returns the variable, borrowed.
    KEL* var(const char* name) const { return std::as_const(*structure).getVar(name); }

    template <class Exception = KELNoSuchElementException, class Action>
    std::string messageOf(const Action& action) {
        return thrownMessage<Exception>(action);
    }

    Watcher watcher;
    Held<KEL_Struct> structure{dynamic_cast<KEL_Struct*>(kel::createValue(GetParam(), nullptr))};
    Held<KEL_Int_Impl> one = make<KEL_Int_Impl>(1);
    Held<KEL_Int_Impl> two = make<KEL_Int_Impl>(2);
};

INSTANTIATE_TEST_SUITE_P(Kinds, StructOperations,
                         ::testing::Values(KELKind_Struct, KELKind_MetaKelDescriptor,
                                           KELKind_MetaKelVarDescriptor));

TEST_P(StructOperations, VisitsNamesInTheOrderOfTheirBytes) {
    fill({{"b", 1}, {"a", 2}, {"B", 3}});
    EXPECT_EQ(names(), (Names{"B", "a", "b"}));
}

TEST_P(StructOperations, BytesAreUnsignedAndAPrefixComesFirst) {
    fill({{"\xFF", 1}, {"ab", 2}, {"a", 3}, {"\x01", 4}, {"\x80", 5}, {"a\xC3\xA9", 6}, {"z", 7}});
    EXPECT_EQ(names(), (Names{"\x01", "a", "ab", "a\xC3\xA9", "z", "\x80", "\xFF"}));
}

TEST_P(StructOperations, AddVarSharesTheValue) {
    structure->addVar("x", one.get());
    EXPECT_EQ(var("x"), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_P(StructOperations, OneValueMaySitUnderSeveralNames) {
    structure->addVar("x", one.get());
    structure->addVar("y", one.get());
    structure->setInt("x", 9);
    EXPECT_EQ(structure->getInt("y"), 9);
}

TEST_P(StructOperations, AddVarOfANullOrEmptyNameDoesNothing) {
    structure->addVar(nullptr, one.get());
    structure->addVar("", one.get());
    structure->putInt("", 1);
    structure->putString(nullptr, "x");
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(StructOperations, AddVarRefusesADoubleQuote) {
    for (const char* name : {"\"", "a\"b", "ab\""}) {
        EXPECT_EQ(messageOf<KELRenameException>([&] { structure->addVar(name, one.get()); }),
                  quoteInName);
        EXPECT_EQ(messageOf<KELRenameException>([&] { structure->putInt(name, 1); }), quoteInName);
    }
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(StructOperations, OnlyTheDoubleQuoteIsRefused) {
    fill({{"it's", 1}, {"two words", 2}, {"@type", 3}, {"\n", 4}, {"9lives", 5}, {"{", 6}});
    EXPECT_EQ(structure->getCount(), 6);
    EXPECT_EQ(structure->getInt("two words"), 2);
}

TEST_P(StructOperations, AddVarOfTheValueThatIsThereKeepsIt) {
    fill({{"x", 1}});
    structure->addVar("x", var("x"));
    EXPECT_EQ(structure->getInt("x"), 1);
    EXPECT_EQ(referencesOf(*var("x")), 1);
}

TEST_P(StructOperations, ANameMayHoldNull) {
    structure->addVar("x", nullptr);
    EXPECT_TRUE(structure->containsVar("x"));
    EXPECT_EQ(structure->getVar("x"), nullptr);
    EXPECT_EQ(var("x"), nullptr);
    EXPECT_EQ(structure->getCount(), 1);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_P(StructOperations, GetVarAddsAReferenceAndTheConstantFormDoesNot) {
    structure->addVar("x", one.get());
    EXPECT_EQ(var("x"), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    const Held<KEL> held(structure->getVar("x"));
    EXPECT_EQ(held.get(), one.get());
    EXPECT_EQ(referencesOf(*one), 3);
}

TEST_P(StructOperations, GettersRefuseAnUnknownName) {
    fill({{"x", 1}});
    JHashCode guid;
    for (const char* name : {"X", "xx"}) {
        EXPECT_EQ(messageOf([&] { structure->getVar(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { var(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getBoolean(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getInt(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getDouble(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getString(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getguid(name, guid); }), unknownToGet);
    }
}

TEST_P(StructOperations, GettersReturnNullFalseOrZeroForANullOrEmptyName) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        JHashCode guid(9, 9, 9, 9);
        EXPECT_EQ(structure->getVar(name), nullptr);
        EXPECT_EQ(var(name), nullptr);
        EXPECT_FALSE(structure->getBoolean(name));
        EXPECT_EQ(structure->getInt(name), 0);
        EXPECT_EQ(structure->getDouble(name), 0.0);
        EXPECT_EQ(structure->getString(name), nullptr);
        EXPECT_EQ(structure->getguid(name, guid), JHashCode());
        EXPECT_FALSE(structure->containsVar(name));
    }
}

TEST_P(StructOperations, ChangesIgnoreANullOrEmptyName) {
    fill({{"x", 1}});
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        structure->removeVar(name);
        structure->setVar(name, one.get());
        structure->setVarValue(name, one.get());
        structure->setString(name, "5");
        structure->setguid(name, JHashCode(5));
        structure->setDouble(name, 5.0);
        structure->setDouble(name, 5.0F);
        structure->setInt(name, 5);
        structure->setInt(name, 5L);
        structure->setInt(name, 5UL);
        structure->setBoolean(name, true);
        structure->renameVar(name, "y");
        structure->renameVar(name, "\"");
        structure->renameVar("x", name);
        structure->renameVar("unknown", name);
    }
    EXPECT_EQ(names(), (Names{"x"}));
    EXPECT_EQ(structure->getInt("x"), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(StructOperations, RemoveVarReleasesTheValue) {
    structure->addVar("x", one.get());
    structure->removeVar("x");
    EXPECT_FALSE(structure->containsVar("x"));
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_P(StructOperations, ARemovedValueIsReleasedBeforeObserversAreCalled) {
    structure->addVar("x", one.get());
    std::vector<int32_t> references;
    watcher.then = [&] { references.push_back(referencesOf(*one)); };
    structure->removeVar("x");
    EXPECT_EQ(references, std::vector<int32_t>{1});
    structure->addVar("x", one.get());
    references.clear();
    structure->addVar("x", two.get());
    ASSERT_FALSE(references.empty());
    EXPECT_EQ(references.front(), 1); // the removal inside the addition
}

TEST_P(StructOperations, ChangesRefuseAnUnknownName) {
    fill({{"x", 1}});
    EXPECT_EQ(messageOf([&] { structure->removeVar("y"); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setVar("y", one.get()); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setVarValue("y", one.get()); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setString("y", "5"); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setguid("y", JHashCode(5)); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setDouble("y", 5.0); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setDouble("y", 5.0F); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setInt("y", 5); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setInt("y", 5L); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setInt("y", 5UL); }), unknownToChange);
    EXPECT_EQ(messageOf([&] { structure->setBoolean("y", true); }), unknownToChange);
    EXPECT_EQ(names(), (Names{"x"}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(StructOperations, SetVarMayStoreNull) {
    structure->addVar("x", one.get());
    structure->setVar("x", nullptr);
    EXPECT_TRUE(structure->containsVar("x"));
    EXPECT_EQ(var("x"), nullptr);
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_P(StructOperations, SetVarByTheValueItselfKeepsIt) {
    fill({{"x", 1}});
    structure->setVar("x", var("x"));
    EXPECT_EQ(structure->getInt("x"), 1);
}

TEST_P(StructOperations, ContainsVarKnowsNamesOnly) {
    fill({{"x", 1}});
    EXPECT_TRUE(structure->containsVar("x"));
    EXPECT_FALSE(structure->containsVar("X"));
}

TEST_P(StructOperations, GetVarNamesIsACopy) {
    fill({{"a", 1}, {"b", 2}});
    const Held<StringEnumeration> before(structure->getVarNames());
    structure->removeAllVars();
    EXPECT_EQ(before->getCount(), 2);
    EXPECT_STREQ(before->nextElement(), "a");
    EXPECT_STREQ(before->nextElement(), "b");
    EXPECT_EQ(referencesOf(*before), 1);
}

TEST_P(StructOperations, RemoveAllVarsNotifiesOnceAlsoWhenEmpty) {
    fill({{"a", 1}, {"b", 2}});
    structure->removeAllVars();
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 1);
    structure->removeAllVars();
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_P(StructOperations, AddVarsOfNullOrOfItselfDoesNothing) {
    fill({{"x", 1}});
    EXPECT_EQ(structure->addVars(nullptr), -1);
    EXPECT_EQ(structure->addVars(structure.get()), 0);
    EXPECT_EQ(names(), (Names{"x"}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(StructOperations, RenameVarKeepsTheValueAndItsReference) {
    structure->addVar("x", one.get());
    structure->renameVar("x", "y");
    EXPECT_EQ(names(), (Names{"y"}));
    EXPECT_EQ(var("y"), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_P(StructOperations, RenameVarMovesANullVariableToItsPlace) {
    fill({{"b", 1}});
    structure->addVar("a", nullptr);
    structure->renameVar("a", "c");
    EXPECT_EQ(names(), (Names{"b", "c"}));
    EXPECT_EQ(var("c"), nullptr);
}

TEST_P(StructOperations, RenameVarRefusesAQuoteBeforeAllElse) {
    fill({{"x", 1}});
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("x", "\""); }), quoteInName);
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("unknown", "a\"b"); }),
              quoteInName);
}

TEST_P(StructOperations, RenameVarRefusesAnUnknownOldNameBeforeAClash) {
    fill({{"x", 1}});
    const std::string expected = "KEL_Struct: Cannot rename variable - name does not exist.";
    EXPECT_EQ(messageOf([&] { structure->renameVar("unknown", "x"); }), expected);
    EXPECT_EQ(messageOf([&] { structure->renameVar("unknown", "y"); }), expected);
}

TEST_P(StructOperations, RenameVarRefusesANameThatExistsAndItsOwn) {
    fill({{"x", 1}, {"y", 2}});
    const std::string expected = "KEL_Struct: Cannot rename variable - new name already exists.";
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("x", "y"); }), expected);
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("x", "x"); }), expected);
    EXPECT_EQ(structure->getInt("x"), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(StructOperations, ReleasesItsValuesWhenItGoes) {
    structure->addVar("x", one.get());
    structure.clear();
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_P(StructOperations, AddVarOfANameThatExistsReplaces) {
    structure->addVar("x", one.get());
    structure->addVar("x", two.get());
    EXPECT_EQ(var("x"), two.get());
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_P(StructOperations, SetVarReplacesTheObject) {
    structure->addVar("x", one.get());
    structure->setVar("x", two.get());
    EXPECT_EQ(var("x"), two.get());
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(referencesOf(*two), 2);
}

TEST_P(StructOperations, AddVarsSharesWhatIsMissingInTheOrderOfNames) {
    const auto other = make<KEL_Struct_Impl>();
    other->addVar("y", two.get());
    other->addVar("x", two.get());
    other->addVar("n", nullptr);
    fill({{"x", 1}});
    EXPECT_EQ(structure->addVars(other.get()), 0);
    EXPECT_EQ(names(), (Names{"n", "x", "y"}));
    EXPECT_EQ(structure->getInt("x"), 1);
    EXPECT_EQ(var("y"), two.get());
    EXPECT_EQ(var("n"), nullptr);
    EXPECT_EQ(watcher.calls(), GetParam() == KELKind_Struct ? 2 : 1); // descriptors gather changes
}

TEST_P(StructOperations, AddVarsAddsWhatTheOtherHeldThoughAnObserverChangesIt) {
    const auto other = make<KEL_Struct_Impl>();
    other->putInt("a", 1);
    other->putInt("b", 2);
    watcher.then = [&] { other->removeAllVars(); };
    structure->addVars(other.get());
    EXPECT_EQ(names(), (Names{"a", "b"}));
}

TEST(KEL_StructTest, AReaderFillsItInAnyOrder) {
    const auto structure = make<KEL_Struct_Impl>();
    Watcher watcher;
    structure->addObserver(&watcher);
    for (const char* name : {"b", "d", "a", "c", "d"}) {
        structure->adoptVariable(name, JPointer<KEL_Impl>(new KEL_Int_Impl(*name)));
    }
    EXPECT_EQ(namesOf(*structure), (Names{"a", "b", "c", "d"}));
    EXPECT_EQ(structure->getInt("c"), 'c');
    EXPECT_EQ(watcher.calls(), 0);
}

} // namespace
