// Every allocation of an operation fails once: nothing leaks, and containers stay whole.
#include "meta/KEL_Manager_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/RandomTree.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
#include <kel/kel.h>

namespace {

using kel::test::failEachAllocation;
using kel::test::FailingAllocation;
using kel::test::Held;
using kel::test::make;
using kel::test::Watcher;

/// A struct of an array, a string, a block and an inner struct, owned by the caller.
KEL_Struct* buildDocument() {
    Held<KEL_Struct> document(new KEL_Struct_Impl());
    document->putString("name", "a text that fits no small buffer of any string class");
    document->putInt("a name that fits no small buffer of any string class", 1);
    const auto list = make<KEL_Array_Impl>();
    for (int i = 0; i < 7; ++i) {
        list->addInt(i);
        list->addString("element");
    }
    document->addVar("list", list.get());
    document->addVar("again", list.get());
    document->addVar("block", make<KEL_MemBlock_Impl>(100, nullptr).get());
    const auto manager = make<KEL_Manager_Impl>();
    manager->addKel(list.get());
    document->addVar("manager", manager.get());
    return document.detach();
}

/// A watched document, and what it must equal whenever a change failed or was undone.
class OutOfMemoryTest : public ::testing::Test {
protected:
    /// Fails each allocation of change, which is undone by undo where it succeeded, and expects the
    /// document as it was, without a notification, after each failure.
    void expectAllOrNothing(const std::function<void()>& change,
                            const std::function<void()>& undo) {
        bool done = false;
        const auto changeAndNote = [&] {
            const int calls = watcher.calls();
            try {
                change();
                done = true;
            } catch (...) {
                told = told || watcher.calls() != calls;
                throw;
            }
        };
        const std::size_t allocations = failEachAllocation(changeAndNote, [&] {
            if (done) {
                undo();
                done = false;
            }
            ASSERT_TRUE(document->equalsValue(expected.get()));
        });
        EXPECT_GT(allocations, 0U);
        EXPECT_FALSE(told);
    }

    void SetUp() override {
        watcher.told.reserve(10000); // the observer is not what fails
        dynamic_cast<KEL_Observable&>(*document).addObserver(&watcher);
        dynamic_cast<KEL_Observable&>(list()).addObserver(&watcher);
    }

    KEL_Array& list() const {
        return dynamic_cast<KEL_Array&>(*std::as_const(*document).getVar("list"));
    }

    bool told = false;
    Watcher watcher;
    Held<KEL_Struct> document{buildDocument()};
    const Held<KEL_Struct> expected{buildDocument()};
    const Held<KEL_Int_Impl> value = make<KEL_Int_Impl>(7);
};

TEST_F(OutOfMemoryTest, BuildingLeavesNothingBehind) {
    EXPECT_GT(failEachAllocation([] { Held<KEL_Struct>(buildDocument()).clear(); }), 40U);
}

TEST_F(OutOfMemoryTest, CopyingLeavesNothingBehind) {
    failEachAllocation([&] { Held<KEL>(document->copy()).clear(); });
    EXPECT_TRUE(document->equalsValue(expected.get()));
}

TEST_F(OutOfMemoryTest, CopyingRandomTreesLeavesNothingBehind) {
    for (uint64_t seed = 0; seed < 20; ++seed) {
        const Held<KEL_Impl> tree(kel::test::randomTree(seed));
        failEachAllocation([&] { Held<KEL>(tree->copy()).clear(); });
    }
}

TEST_F(OutOfMemoryTest, ComparingLeavesNothingBehind) {
    EXPECT_GT(failEachAllocation([&] { document->equalsValue(expected.get()); }), 1U);
}

TEST_F(OutOfMemoryTest, AddingToAnArrayAddsOrDoesNot) {
    const auto undo = [&] { list().removeVar(14); };
    expectAllOrNothing([&] { list().addVar(make<KEL_Int_Impl>(1).get()); }, undo);
    expectAllOrNothing([&] { list().addInt(1); }, undo);
    expectAllOrNothing([&] { list().addString("text"); }, undo);
    expectAllOrNothing([&] { list().addDouble(2.5); }, undo);
    expectAllOrNothing([&] { list().addBoolean(true); }, undo);
    expectAllOrNothing([&] { list().addguid(JHashCode(1)); }, undo);
}

TEST_F(OutOfMemoryTest, AFullArrayThatCannotGrowStaysAsItIs) {
    const auto array = make<KEL_Array_Impl>();
    const auto fillFurther = [&] {
        for (int i = 0; i < 50; ++i) {
            array->addVar(value.get());
        }
    };
    const auto emptyAgain = [&] {
        EXPECT_EQ(kel::test::referencesOf(*value), 1 + array->getCount());
        array->removeAllVars();
    };
    failEachAllocation(fillFurther, emptyAgain);
    EXPECT_EQ(kel::test::referencesOf(*value), 1);
}

TEST_F(OutOfMemoryTest, InsertingIntoAnArrayInsertsOrDoesNot) {
    const auto insert = [&] { list().insertVar(make<KEL_Int_Impl>(1).get(), 3); };
    expectAllOrNothing(insert, [&] { list().removeVar(3); });
}

TEST_F(OutOfMemoryTest, AddVarsAddsWholeElements) {
    const auto source = make<KEL_Array_Impl>();
    for (int i = 0; i < 20; ++i) {
        source->addInt(i);
    }
    const auto target = make<KEL_Array_Impl>();
    failEachAllocation([&] { target->addVars(source.get()); },
                       [&] {
                           for (int32_t i = 0; i < target->getCount(); ++i) {
                               ASSERT_EQ(target->getVar(i), source->getVar(i));
                           }
                           target->removeAllVars();
                       });
}

TEST_F(OutOfMemoryTest, ConvertingIntoAnElementConvertsOrDoesNot) {
    const auto undo = [&] {
        list().setInt(0, 0);
        list().setString(1, "element");
    };
    expectAllOrNothing([&] { list().setString(0, "77"); }, undo);
    expectAllOrNothing([&] { list().setString(1, "77"); }, undo);
    expectAllOrNothing([&] { list().setInt(1, 77); }, undo);
    expectAllOrNothing([&] { list().setDouble(1, 77.5); }, undo);
    expectAllOrNothing([&] { list().setBoolean(0, true); }, undo);
    expectAllOrNothing([&] { list().setguid(1, JHashCode(1)); }, undo);
    expectAllOrNothing([&] { list().setVarValue(1, list().getVar(2)); }, undo);
}

TEST_F(OutOfMemoryTest, ConvertingIntoAStringSaysOutOfMemory) {
    const FailingAllocation failing(0);
    const auto convert = [&] { list().setVarValue(1, list().getVar(2)); };
    EXPECT_EQ(kel::test::thrownMessage<KELOutOfMemoryException>(convert), "Out of memory!");
}

TEST_F(OutOfMemoryTest, AddingToAStructAddsOrDoesNot) {
    const char* longName = "another name that fits no small buffer of any string class";
    const auto undo = [&] { document->removeVar(longName); };
    expectAllOrNothing([&] { document->addVar(longName, value.get()); }, undo);
    expectAllOrNothing([&] { document->addVar(longName, nullptr); }, undo);
    expectAllOrNothing([&] { document->putInt(longName, 1); }, undo);
    expectAllOrNothing([&] { document->putString(longName, "text"); }, undo);
}

TEST_F(OutOfMemoryTest, ReplacingAVariableReplacesOrDoesNot) {
    const auto undo = [&] { document->setVar("name", std::as_const(*expected).getVar("name")); };
    expectAllOrNothing([&] { document->putString("name", "other"); }, undo);
    expectAllOrNothing([&] { document->addVar("name", value.get()); }, undo);
}

TEST_F(OutOfMemoryTest, RenamingRenamesOrDoesNot) {
    const char* longName = "another name that fits no small buffer of any string class";
    expectAllOrNothing([&] { document->renameVar("name", longName); },
                       [&] { document->renameVar(longName, "name"); });
}

TEST_F(OutOfMemoryTest, ConvertingIntoAVariableConvertsOrDoesNot) {
    const auto undo = [&] {
        const Held<KEL_String> text(expected->getString("name"));
        document->setString("name", text->getValue());
    };
    expectAllOrNothing([&] { document->setString("name", "other"); }, undo);
    expectAllOrNothing([&] { document->setInt("name", 1); }, undo);
}

TEST_F(OutOfMemoryTest, SettingAVariableNeedsNoMemory) {
    const FailingAllocation failing(0, true);
    document->setVar("name", value.get());
    document->removeVar("name");
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(OutOfMemoryTest, NamesAreListedOrNot) {
    failEachAllocation([&] { Held<StringEnumeration>(document->getVarNames()).clear(); });
    EXPECT_TRUE(document->equalsValue(expected.get()));
}

TEST_F(OutOfMemoryTest, AddVarsOfStructsAddsWholeVariables) {
    const auto target = make<KEL_Struct_Impl>();
    failEachAllocation([&] { target->addVars(document.get()); },
                       [&] {
                           const Held<StringEnumeration> names(target->getVarNames());
                           while (names->hasMoreElements()) {
                               const char* name = names->nextElement();
                               ASSERT_EQ(std::as_const(*target).getVar(name),
                                         std::as_const(*document).getVar(name));
                           }
                           target->removeAllVars();
                       });
}

TEST_F(OutOfMemoryTest, AssigningAContainerTakesItOverOrDoesNot) {
    const auto other = make<KEL_Struct_Impl>();
    other->putString("x", "text");
    other->addVar("list", &list());
    expectAllOrNothing([&] { document->assign(other.get()); },
                       [&] { document->assign(expected.get()); });
}

TEST_F(OutOfMemoryTest, AddingToAManagerAddsOrDoesNot) {
    JHashCode identity;
    value->getHashCode(identity);
    const auto full = make<KEL_Manager_Impl>();
    for (int i = 0; i < 10; ++i) {
        full->addKel(make<KEL_Int_Impl>(i).get());
    }
    const auto expectTen = [&] {
        if (full->containsKel(identity)) {
            full->removeKel(identity);
        }
        ASSERT_EQ(full->size(), 10);
        ASSERT_EQ(kel::test::referencesOf(*value), 1);
    };
    EXPECT_GT(failEachAllocation([&] { Held<KEL>(full->copy()).clear(); }), 0U);
    failEachAllocation([&] { full->addKel(value.get()); }, expectTen);
}

TEST_F(OutOfMemoryTest, AnObserverIsRegisteredOrNot) {
    Watcher other;
    const auto observed = make<KEL_Int_Impl>(1);
    failEachAllocation([&] { observed->addObserver(&other); },
                       [&] {
                           EXPECT_LE(observed->countObservers(), 1);
                           observed->removeObserver(&other);
                           EXPECT_EQ(observed->countObservers(), 0);
                           observed->deleteObservers();
                       });
}

TEST_F(OutOfMemoryTest, NotifyingNeedsNoMemory) {
    const auto observed = make<KEL_Int_Impl>(1);
    observed->addObserver(&watcher);
    const FailingAllocation failing(0, true);
    observed->setValue(2);
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(OutOfMemoryTest, DestroyingNeedsNoMemory) {
    Held<KEL_Impl> tree(kel::test::nestedMixed(1000));
    const FailingAllocation failing(0, true);
    tree.clear();
    document.clear();
    EXPECT_FALSE(failing.hasFailed());
}

TEST_F(OutOfMemoryTest, FactoriesAnswerNull) {
    const auto answersNull = [](auto create) {
        std::size_t nulls = 0;
        failEachAllocation([&] {
            KEL* made = create();
            nulls += made == nullptr ? 1 : 0;
            DeleteKEL(made);
        });
        return nulls > 0;
    };
    EXPECT_TRUE(answersNull([] { return CreateKELInt(1); }));
    EXPECT_TRUE(answersNull([] { return CreateKELBoolean(true); }));
    EXPECT_TRUE(answersNull([] { return CreateKELDouble(1.0); }));
    EXPECT_TRUE(answersNull([] { return CreateKELString("text"); }));
    EXPECT_TRUE(answersNull([] { return CreateKELGuid(); }));
    EXPECT_TRUE(answersNull([] { return CreateKELGuid(KELGuid()); }));
    EXPECT_TRUE(answersNull([] { return CreateKELArray(); }));
    EXPECT_TRUE(answersNull([] { return CreateKELStruct(); }));
    EXPECT_TRUE(answersNull([] { return CreateKELManager(); }));
    EXPECT_TRUE(answersNull([] { return CreateKELMemBlock(10, nullptr); }));
}

TEST_F(OutOfMemoryTest, FactoriesThrowNothingButABlocksOwnFailure) {
    for (std::size_t allowed = 0; allowed < 4; ++allowed) {
        const FailingAllocation failing(allowed);
        EXPECT_NO_THROW(DeleteKEL(CreateKELInt(1)));
        EXPECT_NO_THROW(DeleteKEL(CreateKELString("text")));
        EXPECT_NO_THROW(DeleteKEL(CreateKELArray()));
        EXPECT_NO_THROW(DeleteKEL(CreateKELStruct()));
        EXPECT_NO_THROW(DeleteKEL(CreateKELManager()));
    }
    const FailingAllocation failing(1);
    EXPECT_EQ(
        kel::test::thrownMessage<KELOutOfMemoryException>([] { CreateKELMemBlock(9, nullptr); }),
        "Out of memory!");
}

} // namespace
