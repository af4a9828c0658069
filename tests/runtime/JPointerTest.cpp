#include <kel/JPointer.h>

#include <gtest/gtest.h>
#include <utility>

namespace {

using Pointer = JPointer<JObject>;

/// An object and a reference of the test's own, so that its count can be read at any time.
class JPointerTest : public ::testing::Test {
protected:
    ~JPointerTest() override { object->release(); }

    int32_t count() const { return object->getRefCount(); }

    /// Returns the object with one more reference, for adoption.
    JObject* given() const {
        object->addRef();
        return object;
    }

    JObject* const object = new JObject();
};

TEST_F(JPointerTest, IsNullAtFirst) {
    Pointer pointer;
    EXPECT_TRUE(pointer.isNull());
    EXPECT_TRUE(std::as_const(pointer).isNull());
    EXPECT_FALSE(pointer.isValid());
    EXPECT_EQ(pointer.get(), nullptr);
}

TEST_F(JPointerTest, AdoptingKeepsTheCount) {
    Pointer pointer(given());
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(pointer.get(), object);
    EXPECT_FALSE(pointer.isNull());
    EXPECT_FALSE(std::as_const(pointer).isNull());
    EXPECT_TRUE(pointer.isValid());
}

TEST_F(JPointerTest, AFreshObjectIsOwnedByThePointerAlone) {
    const Pointer pointer(new JObject());
    EXPECT_EQ(pointer->getRefCount(), 1);
}

TEST_F(JPointerTest, SharingRaisesTheCount) {
    const Pointer pointer = Pointer::share(object);
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(Pointer::share(nullptr).isNull());
}

TEST_F(JPointerTest, CopyingRaisesTheCount) {
    const Pointer pointer(given());
    const Pointer copy(pointer);
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(copy.get(), object);
}

TEST_F(JPointerTest, CopyingNullGivesNull) {
    const Pointer pointer;
    const Pointer copy(pointer);
    EXPECT_TRUE(copy.isNull());
}

TEST_F(JPointerTest, MovingTakesTheReferenceOver) {
    Pointer pointer(given());
    const Pointer moved(std::move(pointer));
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(moved.get(), object);
    EXPECT_EQ(pointer.get(), nullptr);
}

TEST_F(JPointerTest, DestructionReleasesOnce) {
    { const Pointer pointer(given()); }
    EXPECT_EQ(count(), 1);
}

TEST_F(JPointerTest, ClearReleasesAndEmpties) {
    Pointer pointer(given());
    pointer.clear();
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(count(), 1);
    pointer.clear();
    EXPECT_EQ(count(), 1);
}

TEST_F(JPointerTest, DetachHandsTheReferenceToTheCaller) {
    Pointer pointer(given());
    EXPECT_EQ(pointer.detach(), object);
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(pointer.detach(), nullptr);
    object->release();
}

TEST_F(JPointerTest, AssigningAPointerSharesItsTarget) {
    const Pointer source(given());
    Pointer pointer(new JObject());
    pointer = source;
    EXPECT_EQ(pointer.get(), object);
    EXPECT_EQ(count(), 3);
}

TEST_F(JPointerTest, AssigningAPointerReleasesTheOldTarget) {
    Pointer pointer(given());
    pointer = Pointer();
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(count(), 1);
}

TEST_F(JPointerTest, AssigningTheSameTargetKeepsTheCount) {
    Pointer pointer(given());
    const Pointer other(pointer);
    const Pointer& same = pointer;
    pointer = same;
    EXPECT_EQ(count(), 3);
    pointer = other;
    EXPECT_EQ(count(), 3);
}

TEST_F(JPointerTest, AssigningARawPointerAdoptsIt) {
    Pointer pointer(new JObject());
    pointer = given();
    EXPECT_EQ(pointer.get(), object);
    EXPECT_EQ(count(), 2);
}

TEST_F(JPointerTest, AssigningNullEmptiesThePointer) {
    Pointer pointer(given());
    pointer = nullptr;
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(count(), 1);
}

TEST_F(JPointerTest, AssigningTheHeldRawPointerReleasesItOnceAndKeepsIt) {
    Pointer pointer(given());
    given();
    pointer = object;
    EXPECT_EQ(pointer.get(), object);
    EXPECT_EQ(count(), 2);
}

TEST_F(JPointerTest, DereferencesToItsTarget) {
    const Pointer pointer(given());
    EXPECT_EQ(&*pointer, object);
    EXPECT_EQ(pointer.operator->(), object);
}

/// Holds the next of its kind, as the elements of a list do.
class Link : public virtual JObject {
public:
    Pointer next;
};

TEST_F(JPointerTest, ATargetThatOnlyTheOldOneHoldsSurvivesItsAssignment) {
    JPointer<Link> head(new Link());
    head->next = new Link();
    Link* tail = dynamic_cast<Link*>(head->next.get());
    head = JPointer<Link>::share(tail);
    EXPECT_EQ(head.get(), tail);
    EXPECT_EQ(head->getRefCount(), 1);
}

} // namespace
