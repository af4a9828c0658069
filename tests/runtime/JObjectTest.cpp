#include <kel/JObject.h>

#include <gtest/gtest.h>

namespace {

/// Counts its destructions.
class Tracked : public virtual JObject {
public:
    explicit Tracked(int& deaths) : deaths_(deaths) {}
    ~Tracked() override { ++deaths_; }

private:
    int& deaths_;
};

/// Releases itself once more when it is at zero already.
class OverReleased : public virtual JObject {
public:
    explicit OverReleased(int32_t& answer) : answer_(answer) {}
    ~OverReleased() override { answer_ = release(); }

private:
    int32_t& answer_;
};

/// An object that returns another identity than its own.
class Masked : public virtual JObject {
public:
    JHashCode& getHashCode(JHashCode& out) const override { return out = JHashCode(1, 2, 3, 4); }
};

/// Inherits JObject along two paths.
class Left : public virtual JObject {};
class Right : public virtual JObject {};
class Both : public Left, public Right {};

JHashCode identityOf(const JObject& object) {
    JHashCode identity;
    return object.getHashCode(identity);
}

TEST(JObject, StartsWithOneReference) {
    EXPECT_EQ(JObject().getRefCount(), 1);
    EXPECT_EQ(JObject(1, 2, 3, 4).getRefCount(), 1);
    EXPECT_EQ(JObject(JHashCode(1, 2, 3, 4)).getRefCount(), 1);
}

TEST(JObject, TwoObjectsHaveDifferentIdentities) {
    const JObject first;
    const JObject second;
    EXPECT_NE(identityOf(first), identityOf(second));
    EXPECT_FALSE(first.equals(&second));
    EXPECT_FALSE(equals(&first, &second));
}

TEST(JObject, EqualsItself) {
    const JObject object;
    EXPECT_TRUE(object.equals(&object));
    EXPECT_TRUE(equals(&object, &object));
}

TEST(JObject, DoesNotEqualNull) {
    const JObject object;
    EXPECT_FALSE(object.equals(nullptr));
    EXPECT_FALSE(equals(&object, nullptr));
    EXPECT_FALSE(equals(nullptr, &object));
}

TEST(JObject, NullEqualsNull) {
    EXPECT_TRUE(equals(nullptr, nullptr));
}

TEST(JObject, KeepsTheGivenIdentity) {
    EXPECT_EQ(identityOf(JObject(1, 2, 3, 4)), JHashCode(1, 2, 3, 4));
    EXPECT_EQ(identityOf(JObject(JHashCode(5, 6, 7, 8))), JHashCode(5, 6, 7, 8));
}

TEST(JObject, ObjectsOfTheSameIdentityAreEqual) {
    const JObject first(1, 2, 3, 4);
    const JObject second(1, 2, 3, 4);
    EXPECT_TRUE(first.equals(&second));
}

TEST(JObject, EveryWordOfTheIdentityCounts) {
    const JObject object(1, 2, 3, 4);
    for (const JHashCode& other : {JHashCode(9, 2, 3, 4), JHashCode(1, 9, 3, 4),
                                   JHashCode(1, 2, 9, 4), JHashCode(1, 2, 3, 9)}) {
        const JObject stranger(other);
        EXPECT_FALSE(object.equals(&stranger));
    }
}

TEST(JObject, AsksTheOtherForItsIdentity) {
    const JObject object(1, 2, 3, 4);
    const Masked masked;
    EXPECT_TRUE(object.equals(&masked));
}

TEST(JObject, GetHashCodeReturnsItsArgument) {
    const JObject object(1, 2, 3, 4);
    JHashCode out;
    EXPECT_EQ(&object.getHashCode(out), &out);
}

TEST(JObject, IsDeletedByTheReleaseFromOneToZero) {
    int deaths = 0;
    auto* object = new Tracked(deaths);
    object->addRef();
    EXPECT_EQ(object->getRefCount(), 2);
    EXPECT_EQ(object->release(), 1);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->release(), 0);
    EXPECT_EQ(deaths, 1);
}

TEST(JObject, AReleaseAtZeroIsIgnored) {
    int32_t answer = -1;
    auto* object = new OverReleased(answer);
    EXPECT_EQ(object->release(), 0);
    EXPECT_EQ(answer, 0);
}

TEST(JObject, HasOneCountAndOneIdentityAlongEveryPath) {
    Both object;
    static_cast<Left&>(object).addRef();
    EXPECT_EQ(static_cast<Right&>(object).getRefCount(), 2);
    EXPECT_EQ(identityOf(static_cast<Left&>(object)), identityOf(static_cast<Right&>(object)));
    static_cast<Right&>(object).release();
}

TEST(JObject, ACopyIsAnObjectOfItsOwn) {
    JObject object;
    object.addRef();
    const JObject copy(object);
    EXPECT_EQ(copy.getRefCount(), 1);
    EXPECT_FALSE(copy.equals(&object));
}

TEST(JObject, AssignmentKeepsCountAndIdentity) {
    JObject object(1, 2, 3, 4);
    object.addRef();
    object = JObject();
    EXPECT_EQ(object.getRefCount(), 2);
    EXPECT_EQ(identityOf(object), JHashCode(1, 2, 3, 4));
}

} // namespace
