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

/// A struct, watched, and values of the test's own.
class KEL_StructTest : public ::testing::Test {
protected:
    KEL_StructTest() { structure->addObserver(&watcher); }

    /// Adds Ints under the names and forgets the notifications.
    void fill(std::initializer_list<std::pair<const char*, int32_t>> variables) {
        for (const auto& [name, value] : variables) {
            structure->putInt(name, value);
        }
        watcher.told.clear();
    }

    Names names() const { return namesOf(*structure); }

    /// The variable, borrowed.
    KEL* var(const char* name) const { return std::as_const(*structure).getVar(name); }

    template <class Exception = KELNoSuchElementException, class Action>
    std::string messageOf(const Action& action) {
        return thrownMessage<Exception>(action);
    }

    Watcher watcher;
    Held<KEL_Struct_Impl> structure = make<KEL_Struct_Impl>();
    Held<KEL_Int_Impl> one = make<KEL_Int_Impl>(1);
    Held<KEL_Int_Impl> two = make<KEL_Int_Impl>(2);
};

TEST_F(KEL_StructTest, IsOfItsKindAndEmptyAtFirst) {
    EXPECT_EQ(structure->getType(), 8);
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(names(), Names{});
}

TEST_F(KEL_StructTest, HasNoScalarForm) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_FALSE(structure->toBoolean());
    EXPECT_EQ(structure->toInt(), 0);
    EXPECT_EQ(structure->toDouble(), 0.0);
    EXPECT_EQ(structure->toString(), nullptr);
    EXPECT_EQ(structure->toGuid(guid), JHashCode());
}

TEST_F(KEL_StructTest, VisitsNamesInTheOrderOfTheirBytes) {
    fill({{"b", 1}, {"a", 2}, {"B", 3}});
    EXPECT_EQ(names(), (Names{"B", "a", "b"}));
}

TEST_F(KEL_StructTest, BytesAreUnsignedAndAPrefixComesFirst) {
    fill({{"\xFF", 1}, {"ab", 2}, {"a", 3}, {"\x01", 4}, {"\x80", 5}, {"a\xC3\xA9", 6}, {"z", 7}});
    EXPECT_EQ(names(), (Names{"\x01", "a", "ab", "a\xC3\xA9", "z", "\x80", "\xFF"}));
}

TEST_F(KEL_StructTest, AddVarSharesTheValue) {
    structure->addVar("x", one.get());
    EXPECT_EQ(var("x"), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_StructTest, OneValueMaySitUnderSeveralNames) {
    structure->addVar("x", one.get());
    structure->addVar("y", one.get());
    structure->setInt("x", 9);
    EXPECT_EQ(structure->getInt("y"), 9);
}

TEST_F(KEL_StructTest, AddVarOfANullOrEmptyNameDoesNothing) {
    structure->addVar(nullptr, one.get());
    structure->addVar("", one.get());
    structure->putInt("", 1);
    structure->putString(nullptr, "x");
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, AddVarRefusesADoubleQuote) {
    for (const char* name : {"\"", "a\"b", "ab\""}) {
        EXPECT_EQ(messageOf<KELRenameException>([&] { structure->addVar(name, one.get()); }),
                  quoteInName);
        EXPECT_EQ(messageOf<KELRenameException>([&] { structure->putInt(name, 1); }), quoteInName);
    }
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, OnlyTheDoubleQuoteIsRefused) {
    fill({{"it's", 1}, {"two words", 2}, {"@type", 3}, {"\n", 4}, {"9lives", 5}, {"{", 6}});
    EXPECT_EQ(structure->getCount(), 6);
    EXPECT_EQ(structure->getInt("two words"), 2);
}

TEST_F(KEL_StructTest, AddVarOfANameThatExistsReplacesAndNotifiesTwice) {
    structure->addVar("x", one.get());
    watcher.told.clear();
    structure->addVar("x", two.get());
    EXPECT_EQ(var("x"), two.get());
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_StructTest, ReplacingRemovesFirst) {
    fill({{"x", 1}});
    std::vector<bool> thereAtEachCall;
    watcher.then = [&] { thereAtEachCall.push_back(structure->containsVar("x")); };
    structure->putInt("x", 2);
    EXPECT_EQ(thereAtEachCall, (std::vector<bool>{false, true}));
}

TEST_F(KEL_StructTest, AddVarOfTheValueThatIsThereKeepsIt) {
    fill({{"x", 1}});
    structure->addVar("x", var("x"));
    EXPECT_EQ(structure->getInt("x"), 1);
    EXPECT_EQ(referencesOf(*var("x")), 1);
}

TEST_F(KEL_StructTest, ANameMayHoldNull) {
    structure->addVar("x", nullptr);
    EXPECT_TRUE(structure->containsVar("x"));
    EXPECT_EQ(structure->getVar("x"), nullptr);
    EXPECT_EQ(var("x"), nullptr);
    EXPECT_EQ(structure->getCount(), 1);
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_StructTest, GetVarAddsAReferenceAndTheConstantFormDoesNot) {
    structure->addVar("x", one.get());
    EXPECT_EQ(var("x"), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    const Held<KEL> held(structure->getVar("x"));
    EXPECT_EQ(held.get(), one.get());
    EXPECT_EQ(referencesOf(*one), 3);
}

TEST_F(KEL_StructTest, GettersRefuseAnUnknownName) {
    fill({{"x", 1}});
    JHashCode guid;
    for (const char* name : {"X", "xx", ""}) {
        EXPECT_EQ(messageOf([&] { structure->getVar(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { var(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getBoolean(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getInt(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getDouble(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getString(name); }), unknownToGet);
        EXPECT_EQ(messageOf([&] { structure->getguid(name, guid); }), unknownToGet);
    }
}

TEST_F(KEL_StructTest, GettersAnswerANullNameNeutrally) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_EQ(structure->getVar(nullptr), nullptr);
    EXPECT_EQ(var(nullptr), nullptr);
    EXPECT_FALSE(structure->getBoolean(nullptr));
    EXPECT_EQ(structure->getInt(nullptr), 0);
    EXPECT_EQ(structure->getDouble(nullptr), 0.0);
    EXPECT_EQ(structure->getString(nullptr), nullptr);
    EXPECT_EQ(structure->getguid(nullptr, guid), JHashCode());
}

TEST_F(KEL_StructTest, RemoveVarReleasesTheValue) {
    structure->addVar("x", one.get());
    structure->removeVar("x");
    EXPECT_FALSE(structure->containsVar("x"));
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_StructTest, RemoveVarOfANullNameDoesNothing) {
    structure->removeVar(nullptr);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, ChangesRefuseAnUnknownName) {
    fill({{"x", 1}});
    for (const char* name : {"y", ""}) {
        EXPECT_EQ(messageOf([&] { structure->removeVar(name); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setVar(name, one.get()); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setVarValue(name, one.get()); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setString(name, "5"); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setguid(name, JHashCode(5)); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setDouble(name, 5.0); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setDouble(name, 5.0F); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setInt(name, 5); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setInt(name, 5L); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setInt(name, 5UL); }), unknownToChange);
        EXPECT_EQ(messageOf([&] { structure->setBoolean(name, true); }), unknownToChange);
    }
    EXPECT_EQ(names(), (Names{"x"}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, SetVarReplacesTheObjectAndNotifiesNobody) {
    structure->addVar("x", one.get());
    watcher.told.clear();
    structure->setVar("x", two.get());
    EXPECT_EQ(var("x"), two.get());
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(referencesOf(*two), 2);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, SetVarMayStoreNull) {
    structure->addVar("x", one.get());
    structure->setVar("x", nullptr);
    EXPECT_TRUE(structure->containsVar("x"));
    EXPECT_EQ(var("x"), nullptr);
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_F(KEL_StructTest, SetVarByTheValueItselfKeepsIt) {
    fill({{"x", 1}});
    structure->setVar("x", var("x"));
    EXPECT_EQ(structure->getInt("x"), 1);
    structure->setVar(nullptr, one.get());
}

TEST_F(KEL_StructTest, ContainsVarKnowsNamesOnly) {
    fill({{"x", 1}});
    EXPECT_TRUE(structure->containsVar("x"));
    EXPECT_FALSE(structure->containsVar("X"));
    EXPECT_FALSE(structure->containsVar(""));
    EXPECT_FALSE(structure->containsVar(nullptr));
}

TEST_F(KEL_StructTest, GetVarNamesIsACopy) {
    fill({{"a", 1}, {"b", 2}});
    const Held<StringEnumeration> before(structure->getVarNames());
    structure->removeAllVars();
    EXPECT_EQ(before->getCount(), 2);
    EXPECT_STREQ(before->nextElement(), "a");
    EXPECT_STREQ(before->nextElement(), "b");
    EXPECT_EQ(referencesOf(*before), 1);
}

TEST_F(KEL_StructTest, RemoveAllVarsNotifiesOnceAlsoWhenEmpty) {
    fill({{"a", 1}, {"b", 2}});
    structure->removeAllVars();
    EXPECT_EQ(structure->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 1);
    structure->removeAllVars();
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_StructTest, AddVarsSharesWhatIsMissingInTheOrderOfNames) {
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
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_StructTest, AddVarsOfNullOrOfItselfDoesNothing) {
    fill({{"x", 1}});
    EXPECT_EQ(structure->addVars(nullptr), -1);
    EXPECT_EQ(structure->addVars(structure.get()), 0);
    EXPECT_EQ(names(), (Names{"x"}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, AddVarsStandsAnObserverThatChangesTheOther) {
    const auto other = make<KEL_Struct_Impl>();
    other->putInt("a", 1);
    other->putInt("b", 2);
    watcher.then = [&] { other->removeAllVars(); };
    structure->addVars(other.get());
    EXPECT_EQ(names(), (Names{"a"}));
}

TEST_F(KEL_StructTest, RenameVarKeepsTheValueAndItsReference) {
    structure->addVar("x", one.get());
    structure->renameVar("x", "y");
    EXPECT_EQ(names(), (Names{"y"}));
    EXPECT_EQ(var("y"), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_StructTest, RenameVarMovesANullVariableToItsPlace) {
    fill({{"b", 1}});
    structure->addVar("a", nullptr);
    structure->renameVar("a", "c");
    EXPECT_EQ(names(), (Names{"b", "c"}));
    EXPECT_EQ(var("c"), nullptr);
}

TEST_F(KEL_StructTest, RenameVarOfANullNameOrToAnEmptyOneDoesNothing) {
    fill({{"x", 1}});
    structure->renameVar(nullptr, "y");
    structure->renameVar("x", nullptr);
    structure->renameVar("x", "");
    structure->renameVar("unknown", "");
    EXPECT_EQ(names(), (Names{"x"}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, RenameVarRefusesAQuoteBeforeAllElse) {
    fill({{"x", 1}});
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("x", "\""); }), quoteInName);
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("unknown", "a\"b"); }),
              quoteInName);
}

TEST_F(KEL_StructTest, RenameVarRefusesAnUnknownOldNameBeforeAClash) {
    fill({{"x", 1}});
    const std::string expected = "KEL_Struct: Cannot rename variable - name does not exist.";
    EXPECT_EQ(messageOf([&] { structure->renameVar("unknown", "x"); }), expected);
    EXPECT_EQ(messageOf([&] { structure->renameVar("unknown", "y"); }), expected);
    EXPECT_EQ(messageOf([&] { structure->renameVar("", "y"); }), expected);
}

TEST_F(KEL_StructTest, RenameVarRefusesANameThatExistsAndItsOwn) {
    fill({{"x", 1}, {"y", 2}});
    const std::string expected = "KEL_Struct: Cannot rename variable - new name already exists.";
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("x", "y"); }), expected);
    EXPECT_EQ(messageOf<KELRenameException>([&] { structure->renameVar("x", "x"); }), expected);
    EXPECT_EQ(structure->getInt("x"), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, DoesNotObserveItsValues) {
    structure->addVar("x", one.get());
    watcher.told.clear();
    one->setValue(9);
    structure->setInt("x", 10);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_StructTest, ReleasesItsValuesWhenItGoes) {
    structure->addVar("x", one.get());
    structure.clear();
    EXPECT_EQ(referencesOf(*one), 1);
}

TEST_F(KEL_StructTest, AReaderFillsItInAnyOrder) {
    for (const char* name : {"b", "d", "a", "c", "d"}) {
        structure->adoptVariable(name, JPointer<KEL_Impl>(new KEL_Int_Impl(*name)));
    }
    EXPECT_EQ(names(), (Names{"a", "b", "c", "d"}));
    EXPECT_EQ(structure->getInt("c"), 'c');
    EXPECT_EQ(watcher.calls(), 0);
}

} // namespace
