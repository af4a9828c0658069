#include "runtime/JVector.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Thrown.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

using kel::test::FailingAllocation;
using kel::test::thrownMessage;
using BadIndex = JArrayIndexOutOfBoundsException;

/// A vector and objects of the test's own, so that their counts can be read.
class JVectorTest : public ::testing::Test {
protected:
    JVectorTest() {
        for (int i = 0; i < 12; ++i) {
            objects.emplace_back(new JObject());
        }
    }

    JObject* object(size_t i) const { return objects[i].get(); }
    int32_t count(size_t i) const { return objects[i]->getRefCount(); }

    /// Fills the vector with the first objects.
    void fill(size_t size) {
        for (size_t i = 0; i < size; ++i) {
            vector.addElement(object(i));
        }
    }

    /// Returns the vector's contents as indices of objects.
    std::vector<size_t> contents() const {
        std::vector<size_t> indices;
        for (int32_t i = 0; i < vector.size(); ++i) {
            size_t index = 0;
            while (object(index) != vector.elementAtRef(i)) {
                ++index;
            }
            indices.push_back(index);
        }
        return indices;
    }

    using Indices = std::vector<size_t>;

    std::vector<JPointer<JObject>> objects;
    JVector<> vector{5, 5};
};

TEST_F(JVectorTest, IsEmptyAtFirst) {
    EXPECT_EQ(vector.size(), 0);
    EXPECT_EQ(vector.capacity(), 5);
    EXPECT_TRUE(vector.isEmpty());
}

TEST_F(JVectorTest, AddElementAppendsAndTakesAReference) {
    fill(2);
    EXPECT_EQ(contents(), (Indices{0, 1}));
    EXPECT_FALSE(vector.isEmpty());
    EXPECT_EQ(count(0), 2);
}

TEST_F(JVectorTest, OneObjectMaySitInSeveralPlaces) {
    vector.addElement(object(0));
    vector.addElement(object(0));
    EXPECT_EQ(contents(), (Indices{0, 0}));
    EXPECT_EQ(count(0), 3);
}

TEST_F(JVectorTest, NullIsNeverStored) {
    fill(1);
    vector.addElement(nullptr);
    vector.insertElementAt(nullptr, 0);
    vector.setElementAt(nullptr, 0);
    EXPECT_EQ(contents(), (Indices{0}));
}

TEST_F(JVectorTest, ElementAtAddsAReferenceAndElementAtRefDoesNot) {
    fill(1);
    EXPECT_EQ(vector.elementAtRef(0), object(0));
    EXPECT_EQ(count(0), 2);
    const JPointer<JObject> held(vector.elementAt(0));
    EXPECT_EQ(held.get(), object(0));
    EXPECT_EQ(count(0), 3);
}

TEST_F(JVectorTest, AnIndexOutsideIsRefused) {
    fill(2);
    for (const int32_t index : {-1, 2, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.elementAt(index); }),
                  "JVector::elementAtRef: index is invalid");
        EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.elementAtRef(index); }),
                  "JVector::elementAtRef: index is invalid");
        EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.setElementAt(object(5), index); }),
                  "JVector::setElementAt: index is invalid");
        EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.removeElementAt(index); }),
                  "JVector::removeElementAt: index is invalid");
    }
    EXPECT_EQ(contents(), (Indices{0, 1}));
}

TEST_F(JVectorTest, FirstAndLastElementCarryAReference) {
    fill(3);
    const JPointer<JObject> first(vector.firstElement());
    const JPointer<JObject> last(vector.lastElement());
    EXPECT_EQ(first.get(), object(0));
    EXPECT_EQ(last.get(), object(2));
    EXPECT_EQ(count(0), 3);
    EXPECT_EQ(count(2), 3);
}

TEST_F(JVectorTest, FirstAndLastElementOfAnEmptyVectorThrow) {
    EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.firstElement(); }),
              "JVector::elementAtRef: index is invalid");
    EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.lastElement(); }),
              "JVector::elementAtRef: index is invalid");
}

TEST_F(JVectorTest, SetElementAtReplaces) {
    fill(3);
    vector.setElementAt(object(7), 1);
    EXPECT_EQ(contents(), (Indices{0, 7, 2}));
    EXPECT_EQ(count(1), 1);
    EXPECT_EQ(count(7), 2);
}

TEST_F(JVectorTest, SetElementAtWithTheElementItselfKeepsIt) {
    auto* element = new JObject();
    vector.addElement(element);
    element->release(); // only the vector holds it now
    vector.setElementAt(element, 0);
    EXPECT_EQ(element->getRefCount(), 1);
}

TEST_F(JVectorTest, SetElementAtOfNullChangesNothingButTestsTheIndex) {
    fill(2);
    vector.setElementAt(nullptr, 1);
    EXPECT_EQ(contents(), (Indices{0, 1}));
    EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.setElementAt(nullptr, 2); }),
              "JVector::setElementAt: index is invalid");
}

TEST_F(JVectorTest, InsertAtSizeAppends) {
    fill(2);
    vector.insertElementAt(object(9), 2);
    EXPECT_EQ(contents(), (Indices{0, 1, 9}));
    EXPECT_EQ(count(9), 2);
}

TEST_F(JVectorTest, InsertMovesTheFollowingElementsUp) {
    fill(3);
    vector.insertElementAt(object(9), 1);
    vector.insertElementAt(object(8), 0);
    EXPECT_EQ(contents(), (Indices{8, 0, 9, 1, 2}));
    EXPECT_EQ(count(1), 2);
}

TEST_F(JVectorTest, InsertIntoAFullVectorGrowsIt) {
    fill(5);
    vector.insertElementAt(object(9), 0);
    EXPECT_EQ(contents(), (Indices{9, 0, 1, 2, 3, 4}));
    EXPECT_EQ(vector.capacity(), 10);
}

TEST_F(JVectorTest, InsertBeyondTheSizeThrows) {
    fill(2);
    for (const int32_t index : {3, -1, INT32_MAX}) {
        EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.insertElementAt(object(9), index); }),
                  "JVector::insertElementAt: index is invalid");
        EXPECT_EQ(thrownMessage<BadIndex>([&] { vector.insertElementAt(nullptr, index); }),
                  "JVector::insertElementAt: index is invalid");
    }
    EXPECT_EQ(contents(), (Indices{0, 1}));
}

TEST_F(JVectorTest, RemoveElementAtClosesTheGap) {
    fill(4);
    vector.removeElementAt(1);
    EXPECT_EQ(contents(), (Indices{0, 2, 3}));
    EXPECT_EQ(count(1), 1);
    vector.removeElementAt(2);
    EXPECT_EQ(contents(), (Indices{0, 2}));
}

TEST_F(JVectorTest, RemoveElementTakesTheFirstMatchOnly) {
    fill(2);
    vector.addElement(object(0));
    EXPECT_TRUE(vector.removeElement(object(0)));
    EXPECT_EQ(contents(), (Indices{1, 0}));
}

TEST_F(JVectorTest, RemoveElementOfAStrangerChangesNothing) {
    fill(2);
    EXPECT_FALSE(vector.removeElement(object(5)));
    EXPECT_FALSE(vector.removeElement(nullptr));
    EXPECT_EQ(contents(), (Indices{0, 1}));
}

TEST_F(JVectorTest, RemoveAllElementsReleasesThemAndKeepsTheRoom) {
    fill(7);
    vector.removeAllElements();
    EXPECT_EQ(vector.size(), 0);
    EXPECT_EQ(vector.capacity(), 10);
    EXPECT_EQ(count(0), 1);
    EXPECT_EQ(count(6), 1);
}

/// Runs an action when it is destroyed.
class Last : public virtual JObject {
public:
    explicit Last(std::function<void()> action) : action_(std::move(action)) {}
    ~Last() override { action_(); }

private:
    std::function<void()> action_;
};

TEST_F(JVectorTest, RemoveAllElementsTakesElementsThatAreAddedMeanwhileToo) {
    fill(2);
    vector.adoptElement(new Last([&] {
        for (size_t i = 3; i < 9; ++i) { // more than there is room for
            vector.addElement(object(i));
        }
    }));
    fill(1);
    vector.removeAllElements();
    EXPECT_EQ(vector.size(), 0);
    for (size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(count(i), 1) << i;
    }
}

TEST_F(JVectorTest, RemoveAllElementsStandsElementsThatAreRemovedMeanwhile) {
    fill(2);
    vector.adoptElement(new Last([&] {
        vector.removeElementAt(0);
        vector.trimToSize();
    }));
    vector.removeAllElements();
    EXPECT_EQ(vector.size(), 0);
    EXPECT_EQ(count(0), 1);
    EXPECT_EQ(count(1), 1);
}

TEST_F(JVectorTest, DestructionReleasesTheElements) {
    {
        JVector<> other(5, 5);
        other.addElement(object(0));
        EXPECT_EQ(count(0), 2);
    }
    EXPECT_EQ(count(0), 1);
}

TEST_F(JVectorTest, IndexOfSearchesUpward) {
    fill(3);
    vector.addElement(object(1));
    EXPECT_EQ(vector.indexOf(object(1)), 1);
    EXPECT_EQ(vector.indexOf(object(1), 1), 1);
    EXPECT_EQ(vector.indexOf(object(1), 2), 3);
    EXPECT_EQ(vector.indexOf(object(0), 1), -1);
}

TEST_F(JVectorTest, IndexOfAnswersMinusOneForNullAndForAStartBehindTheEnd) {
    fill(3);
    EXPECT_EQ(vector.indexOf(nullptr), -1);
    EXPECT_EQ(vector.indexOf(object(0), 3), -1);
    EXPECT_EQ(vector.indexOf(object(0), INT32_MAX), -1);
    EXPECT_EQ(vector.indexOf(object(9)), -1);
}

TEST_F(JVectorTest, LastIndexOfSearchesDownward) {
    fill(3);
    vector.addElement(object(1));
    EXPECT_EQ(vector.lastIndexOf(object(1)), 3);
    EXPECT_EQ(vector.lastIndexOf(object(1), 2), 1);
    EXPECT_EQ(vector.lastIndexOf(object(2), 1), -1);
    EXPECT_EQ(vector.lastIndexOf(object(1), 1000), 3);
}

TEST_F(JVectorTest, LastIndexOfAnswersMinusOneForNullAndForANegativeStart) {
    fill(3);
    EXPECT_EQ(vector.lastIndexOf(nullptr), -1);
    EXPECT_EQ(vector.lastIndexOf(object(0), -1), -1);
}

TEST_F(JVectorTest, LastIndexOfLooksAtNothingBehindTheElements) {
    fill(5); // size equals capacity: there is no slot after the last element
    EXPECT_EQ(vector.lastIndexOf(object(4)), 4);
    EXPECT_EQ(vector.lastIndexOf(object(9)), -1);
    vector.removeAllElements();
    EXPECT_EQ(vector.lastIndexOf(object(0)), -1);
}

TEST_F(JVectorTest, ContainsSearchesByIdentity) {
    fill(1);
    EXPECT_TRUE(vector.contains(object(0)));
    EXPECT_FALSE(vector.contains(object(1)));
    EXPECT_FALSE(vector.contains(nullptr));
}

TEST_F(JVectorTest, EqualityIsIdentityNotContents) {
    JVector<JString> strings(5, 5);
    const JPointer<JString> first(new JString("same"));
    const JPointer<JString> second(new JString("same"));
    strings.addElement(first.get());
    EXPECT_EQ(strings.indexOf(second.get()), -1);
    EXPECT_EQ(strings.indexOf(first.get()), 0);
}

TEST_F(JVectorTest, AnotherObjectOfTheSameIdentityIsFound) {
    vector.addElement(JPointer<JObject>(new JObject(1, 2, 3, 4)).get());
    const JObject key(1, 2, 3, 4);
    EXPECT_EQ(vector.indexOf(&key), 0);
}

/// An object that claims to be equal to everything.
class Agreeable : public virtual JObject {
public:
    bool equals(const JObject*) const override { return true; }
};

TEST_F(JVectorTest, TheSearchedObjectIsAskedForEquality) {
    fill(2);
    const Agreeable searched;
    EXPECT_EQ(vector.indexOf(&searched), 0);
    EXPECT_EQ(vector.lastIndexOf(&searched), 1);
}

TEST_F(JVectorTest, CapacityGrowsByTheIncrement) {
    fill(1);
    EXPECT_EQ(vector.capacity(), 5);
    for (size_t i = 1; i < 6; ++i) {
        vector.addElement(object(i));
    }
    EXPECT_EQ(vector.capacity(), 10);
    for (size_t i = 6; i < 11; ++i) {
        vector.addElement(object(i));
    }
    EXPECT_EQ(vector.capacity(), 15);
}

TEST_F(JVectorTest, TrimToSizeGivesTheRestBack) {
    fill(7);
    vector.trimToSize();
    EXPECT_EQ(vector.capacity(), 7);
    EXPECT_EQ(contents(), (Indices{0, 1, 2, 3, 4, 5, 6}));
    vector.trimToSize();
    EXPECT_EQ(vector.capacity(), 7);
}

TEST_F(JVectorTest, AnIncrementOf0Doubles) {
    JVector<> doubling(10, 0);
    doubling.ensureCapacity(11);
    EXPECT_EQ(doubling.capacity(), 20);
    doubling.ensureCapacity(41);
    EXPECT_EQ(doubling.capacity(), 80);
}

TEST_F(JVectorTest, EnsureCapacityNeverShrinks) {
    vector.ensureCapacity(3);
    EXPECT_EQ(vector.capacity(), 5);
    vector.ensureCapacity(-1);
    EXPECT_EQ(vector.capacity(), 5);
}

TEST_F(JVectorTest, EnsureCapacityGrowsByWholeIncrements) {
    vector.ensureCapacity(11);
    EXPECT_EQ(vector.capacity(), 15);
}

TEST_F(JVectorTest, SetSizeSetsTheCapacity) {
    fill(2);
    vector.setSize(100);
    EXPECT_EQ(vector.capacity(), 100);
    vector.setSize(2);
    EXPECT_EQ(vector.capacity(), 2);
    EXPECT_EQ(contents(), (Indices{0, 1}));
}

TEST_F(JVectorTest, SetSizeBelowTheSizeLosesNoElement) {
    fill(4);
    vector.setSize(1);
    EXPECT_EQ(vector.capacity(), 1);
    EXPECT_EQ(contents(), (Indices{0, 1, 2, 3}));
    vector.addElement(object(4));
    EXPECT_EQ(contents(), (Indices{0, 1, 2, 3, 4}));
}

TEST_F(JVectorTest, AVectorTrimmedToNothingGrowsAgain) {
    JVector<> doubling(10, 0);
    doubling.trimToSize();
    EXPECT_EQ(doubling.capacity(), 0);
    doubling.addElement(object(0));
    EXPECT_EQ(doubling.size(), 1);
}

TEST_F(JVectorTest, ACopySharesTheElements) {
    fill(6);
    const JVector<> copy(vector);
    EXPECT_EQ(copy.size(), 6);
    EXPECT_EQ(copy.capacity(), 10);
    EXPECT_EQ(copy.elementAtRef(5), object(5));
    EXPECT_EQ(count(5), 3);
    EXPECT_FALSE(copy.equals(&vector));
}

TEST_F(JVectorTest, ACopyHasTheSameIncrement) {
    fill(5);
    JVector<> copy(vector);
    copy.addElement(object(5));
    EXPECT_EQ(copy.capacity(), 10);
    EXPECT_EQ(vector.size(), 5);
}

TEST_F(JVectorTest, ConstructionWithoutMemoryThrows) {
    const FailingAllocation failing(0);
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([] { const JVector<> made(5, 5); }),
              "JVector constructor failed.");
}

TEST_F(JVectorTest, ANegativeCapacityCannotBeAllocated) {
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([] { const JVector<> made(-1, 5); }),
              "JVector constructor failed.");
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([&] { vector.setSize(-1); }),
              "JVector::setSize() failed.");
}

TEST_F(JVectorTest, CopyingWithoutMemoryThrowsAndTakesNoReference) {
    fill(3);
    const FailingAllocation failing(0);
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([&] { const JVector<> copy(vector); }),
              "JVector constructor failed.");
    EXPECT_EQ(count(0), 2);
}

TEST_F(JVectorTest, GrowingWithoutMemoryThrowsAndLeavesTheVector) {
    fill(5);
    {
        const FailingAllocation failing(0, true);
        EXPECT_THROW(vector.addElement(object(5)), JOutOfMemoryException);
        EXPECT_THROW(vector.insertElementAt(object(5), 0), JOutOfMemoryException);
        EXPECT_THROW(vector.setSize(100), JOutOfMemoryException);
        EXPECT_THROW(vector.ensureCapacity(100), JOutOfMemoryException);
    }
    EXPECT_EQ(contents(), (Indices{0, 1, 2, 3, 4}));
    EXPECT_EQ(vector.capacity(), 5);
    EXPECT_EQ(count(5), 1);
}

TEST_F(JVectorTest, TrimmingWithoutMemoryThrowsAndLeavesTheVector) {
    fill(3);
    {
        const FailingAllocation failing(0, true);
        EXPECT_THROW(vector.trimToSize(), JOutOfMemoryException);
    }
    EXPECT_EQ(contents(), (Indices{0, 1, 2}));
    EXPECT_EQ(vector.capacity(), 5);
}

TEST_F(JVectorTest, FailureToGrowSaysSo) {
    const auto refuseLarge = [](std::size_t size) { return size < 1000; };
    const auto before = kel::platform::exchangeAllocationGate(refuseLarge);
    const std::string message = thrownMessage<JOutOfMemoryException>([&] { vector.setSize(1000); });
    kel::platform::exchangeAllocationGate(before);
    EXPECT_EQ(message, "JVector::setSize() failed.");
}

TEST_F(JVectorTest, EveryAllocationMayFailWhileItGrows) {
    const auto grow = [&] {
        JVector<> growing(5, 5);
        for (int i = 0; i < 100; ++i) {
            growing.addElement(object(static_cast<size_t>(i) % 12));
        }
    };
    EXPECT_GT(kel::test::failEachAllocation(grow), 5U);
    EXPECT_EQ(count(3), 1);
}

TEST_F(JVectorTest, RoomForMoreThanTheLargestSizeIsRefused) {
    vector.addElement(object(0));
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([&] { vector.makeRoom(INT32_MAX); }),
              "JVector::setSize() failed.");
}

TEST_F(JVectorTest, AppendingAMillionIsLinear) {
    for (int i = 0; i < 1000000; ++i) {
        vector.addElement(object(0));
    }
    EXPECT_EQ(vector.size(), 1000000);
    EXPECT_EQ(vector.capacity(), 1000000);
    EXPECT_EQ(count(0), 1000001);
}

} // namespace
