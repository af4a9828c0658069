#include "support/Held.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::referencesOf;
using kel::test::thrownMessage;
using kel::test::Watcher;

const std::string outOfBounds = "Array index out of bounds.";

/// An array, watched, and values of the test's own.
class KEL_ArrayTest : public ::testing::Test {
protected:
    KEL_ArrayTest() { array->addObserver(&watcher); }

    void fill(std::initializer_list<int32_t> numbers) {
        for (const int32_t number : numbers) {
            array->addInt(number);
        }
        watcher.told.clear();
    }

    std::vector<int32_t> numbers() const {
        std::vector<int32_t> found;
        for (int32_t i = 0; i < array->getCount(); ++i) {
            found.push_back(array->getInt(i));
        }
        return found;
    }

    template <class Action> std::string messageOf(const Action& action) {
        return thrownMessage<KELArrayIndexOutOfBoundsException>(action);
    }

    using Numbers = std::vector<int32_t>;

    Watcher watcher;
    Held<KEL_Array_Impl> array = make<KEL_Array_Impl>();
    Held<KEL_Int_Impl> one = make<KEL_Int_Impl>(1);
    Held<KEL_Int_Impl> two = make<KEL_Int_Impl>(2);
};

TEST_F(KEL_ArrayTest, AddVarSharesTheValueAndAnswersItsIndex) {
    EXPECT_EQ(array->addVar(one.get()), 0);
    EXPECT_EQ(array->addVar(two.get()), 1);
    EXPECT_EQ(array->getVar(0), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_ArrayTest, AddVarTwiceGivesTwoEntriesOfOneObject) {
    array->addVar(one.get());
    array->addVar(one.get());
    EXPECT_EQ(array->getCount(), 2);
    array->setInt(0, 9);
    EXPECT_EQ(numbers(), (Numbers{9, 9}));
}

TEST_F(KEL_ArrayTest, AddVarOfNullAnswersMinusOneAndNotifiesNobody) {
    EXPECT_EQ(array->addVar(nullptr), -1);
    EXPECT_EQ(array->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, GetVarIsBorrowedInBothForms) {
    array->addVar(one.get());
    EXPECT_EQ(array->getVar(0), one.get());
    EXPECT_EQ(std::as_const(*array).getVar(0), one.get());
    EXPECT_EQ(referencesOf(*one), 2);
}

TEST_F(KEL_ArrayTest, GettersRefuseABadIndex) {
    fill({1, 2});
    JHashCode guid;
    for (const int32_t index : {-1, 2, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(messageOf([&] { array->getVar(index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { std::as_const(*array).getVar(index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->getBoolean(index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->getInt(index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->getDouble(index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->getString(index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->getguid(index, guid); }), outOfBounds);
    }
}

TEST_F(KEL_ArrayTest, SettersRefuseABadIndexAndNotifyNobody) {
    fill({1, 2});
    for (const int32_t index : {-1, 2, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(messageOf([&] { array->setVar(one.get(), index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setVar(nullptr, index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setVarValue(index, one.get()); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setString(index, "5"); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setString(index, nullptr); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setguid(index, JHashCode(5)); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setDouble(index, 5.0); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setDouble(index, 5.0F); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setInt(index, 5); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setInt(index, 5L); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setInt(index, 5UL); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->setBoolean(index, true); }), outOfBounds);
    }
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, InsertVarMovesTheFollowingElementsUp) {
    fill({1, 2});
    array->insertVar(make<KEL_Int_Impl>(9).get(), 1);
    EXPECT_EQ(numbers(), (Numbers{1, 9, 2}));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_ArrayTest, InsertVarAtTheCountAppends) {
    fill({1, 2});
    array->insertVar(make<KEL_Int_Impl>(9).get(), 2);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 9}));
}

TEST_F(KEL_ArrayTest, InsertVarBeyondTheCountIsRefused) {
    fill({1, 2});
    for (const int32_t index : {3, -1, INT32_MAX}) {
        EXPECT_EQ(messageOf([&] { array->insertVar(one.get(), index); }), outOfBounds);
        EXPECT_EQ(messageOf([&] { array->insertVar(nullptr, index); }), outOfBounds);
    }
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, InsertVarOfNullIsIgnored) {
    fill({1});
    array->insertVar(nullptr, 0);
    EXPECT_EQ(numbers(), (Numbers{1}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, InsertVarIntoAFullArrayGrowsIt) {
    fill({1, 2, 3, 4, 5});
    array->insertVar(make<KEL_Int_Impl>(0).get(), 0);
    EXPECT_EQ(numbers(), (Numbers{0, 1, 2, 3, 4, 5}));
}

TEST_F(KEL_ArrayTest, SetVarReplacesTheObject) {
    array->addVar(one.get());
    array->setVar(two.get(), 0);
    EXPECT_EQ(array->getVar(0), two.get());
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(referencesOf(*two), 2);
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_ArrayTest, SetVarOfNullIsIgnored) {
    fill({1});
    array->setVar(nullptr, 0);
    EXPECT_EQ(numbers(), (Numbers{1}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, SetVarByTheElementItselfKeepsIt) {
    fill({1});
    array->setVar(array->getVar(0), 0);
    EXPECT_EQ(numbers(), (Numbers{1}));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_ArrayTest, SwapVarsExchanges) {
    fill({1, 2, 3});
    array->swapVars(0, 2);
    EXPECT_EQ(numbers(), (Numbers{3, 2, 1}));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_ArrayTest, SwapVarsOfEqualIndicesNotifiesAllTheSame) {
    fill({1, 2});
    array->swapVars(1, 1);
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_F(KEL_ArrayTest, SwapVarsKeepsTheReferences) {
    array->addVar(one.get());
    array->addVar(two.get());
    array->swapVars(0, 1);
    EXPECT_EQ(referencesOf(*one), 2);
    EXPECT_EQ(referencesOf(*two), 2);
}

TEST_F(KEL_ArrayTest, SwapVarsRefusesABadIndex) {
    fill({1, 2});
    const std::string expected = "KEL_Array_Impl::swapVars failed. No element at specified index.";
    EXPECT_EQ(messageOf([&] { array->swapVars(0, 2); }), expected);
    EXPECT_EQ(messageOf([&] { array->swapVars(2, 0); }), expected);
    EXPECT_EQ(messageOf([&] { array->swapVars(-1, 0); }), expected);
    EXPECT_EQ(messageOf([&] { array->swapVars(5, 5); }), expected);
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, RemoveVarClosesTheGap) {
    array->addVar(one.get());
    array->addVar(two.get());
    array->removeVar(0);
    EXPECT_EQ(numbers(), (Numbers{2}));
    EXPECT_EQ(referencesOf(*one), 1);
    EXPECT_EQ(watcher.calls(), 3);
}

TEST_F(KEL_ArrayTest, RemoveVarRefusesABadIndex) {
    const std::string expected = "KEL_Array::removeVar failed. No element at specified index.";
    EXPECT_EQ(messageOf([&] { array->removeVar(0); }), expected);
    fill({1});
    EXPECT_EQ(messageOf([&] { array->removeVar(1); }), expected);
    EXPECT_EQ(messageOf([&] { array->removeVar(-1); }), expected);
    EXPECT_EQ(numbers(), (Numbers{1}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, RemoveAllVarsNotifiesOnceAlsoWhenEmpty) {
    fill({1, 2, 3});
    array->removeAllVars();
    EXPECT_EQ(array->getCount(), 0);
    EXPECT_EQ(watcher.calls(), 1);
    array->removeAllVars();
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_ArrayTest, FindsValuesByIdentity) {
    array->addVar(one.get());
    array->addVar(two.get());
    array->addVar(one.get());
    EXPECT_TRUE(array->containsVar(two.get()));
    EXPECT_EQ(array->indexOfVar(one.get()), 0);
    EXPECT_EQ(array->indexOfVar(two.get()), 1);
}

TEST_F(KEL_ArrayTest, DoesNotFindEqualValuesOrNull) {
    array->addVar(one.get());
    const auto equal = make<KEL_Int_Impl>(1);
    EXPECT_FALSE(array->containsVar(equal.get()));
    EXPECT_EQ(array->indexOfVar(equal.get()), -1);
    EXPECT_FALSE(array->containsVar(nullptr));
    EXPECT_EQ(array->indexOfVar(nullptr), -1);
}

TEST_F(KEL_ArrayTest, AddVarsSharesWhatIsMissing) {
    const auto other = make<KEL_Array_Impl>();
    array->addVar(one.get());
    other->addVar(two.get());
    other->addVar(one.get());
    other->addVar(two.get());
    EXPECT_EQ(array->addVars(other.get()), 0);
    EXPECT_EQ(numbers(), (Numbers{1, 2}));
    EXPECT_EQ(array->getVar(1), two.get());
}

TEST_F(KEL_ArrayTest, AddVarsNotifiesForEachElement) {
    const auto other = make<KEL_Array_Impl>();
    other->addVar(one.get());
    other->addVar(two.get());
    array->addVars(other.get());
    EXPECT_EQ(watcher.calls(), 2);
}

TEST_F(KEL_ArrayTest, AddVarsOfItselfChangesNothing) {
    array->addVar(one.get());
    array->addVar(one.get());
    watcher.told.clear();
    EXPECT_EQ(array->addVars(array.get()), 0);
    EXPECT_EQ(numbers(), (Numbers{1, 1}));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, AddVarsOfNullAnswersMinusOne) {
    EXPECT_EQ(array->addVars(nullptr), -1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTest, AddVarsReadsTheCountOfTheOtherAtEveryStep) {
    const auto other = make<KEL_Array_Impl>();
    other->addVar(one.get());
    other->addVar(two.get());
    watcher.then = [&] { other->removeAllVars(); };
    array->addVars(other.get());
    EXPECT_EQ(numbers(), (Numbers{1}));
}

TEST_F(KEL_ArrayTest, ReleasesItsElementsWhenItGoes) {
    array->addVar(one.get());
    array.clear();
    EXPECT_EQ(referencesOf(*one), 1);
}

} // namespace
