#include "runtime/JVector.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>

namespace {

using kel::test::thrownMessage;
using Vector = JVector<JObject>;

JPointer<Vector> vectorOf(std::initializer_list<JObject*> objects) {
    JPointer<Vector> vector(new Vector(5, 5));
    for (JObject* object : objects) {
        vector->addElement(object);
    }
    return vector;
}

TEST(JEnumeration, OfAnEmptyVectorHasNothingAtOnce) {
    const JPointer<JEnumeration> walk(vectorOf({})->elements());
    EXPECT_FALSE(walk->hasMoreElements());
}

TEST(JEnumeration, HandsOutEveryElementWithAReference) {
    JObject first;
    JObject second;
    const JPointer<Vector> vector = vectorOf({&first, &second});
    const JPointer<JEnumeration> walk(vector->elements());
    for (JObject* expected : {&first, &second}) {
        ASSERT_TRUE(walk->hasMoreElements());
        const JPointer<JObject> element(walk->nextElement());
        EXPECT_EQ(element.get(), expected);
        EXPECT_EQ(expected->getRefCount(), 3);
    }
    EXPECT_FALSE(walk->hasMoreElements());
}

TEST(JEnumeration, EachWalkStartsAtTheFirstElement) {
    JObject object;
    const JPointer<Vector> vector = vectorOf({&object});
    const JPointer<JEnumeration> first(vector->elements());
    JPointer<JObject>(first->nextElement()).clear();
    const JPointer<JEnumeration> second(vector->elements());
    EXPECT_FALSE(first->hasMoreElements());
    EXPECT_TRUE(second->hasMoreElements());
}

TEST(JEnumeration, KeepsItsVectorAlive) {
    JPointer<JObject> element(new JObject());
    const JPointer<JEnumeration> walk(vectorOf({element.get()})->elements());
    element.clear();
    const JPointer<JObject> found(walk->nextElement());
    EXPECT_EQ(found->getRefCount(), 2);
}

TEST(JEnumeration, SeesElementsThatAreAddedMeanwhile) {
    JObject object;
    const JPointer<Vector> vector = vectorOf({});
    const JPointer<JEnumeration> walk(vector->elements());
    vector->addElement(&object);
    EXPECT_TRUE(walk->hasMoreElements());
}

TEST(JEnumeration, WithoutAVectorHasNothingAndThrowsAPointer) {
    const JPointer<Vector::JVectorEnumerator> walk(new Vector::JVectorEnumerator(nullptr));
    EXPECT_FALSE(walk->hasMoreElements());
    try {
        walk->nextElement();
        FAIL() << "nothing thrown";
    } catch (JNoSuchElementException* failure) {
        EXPECT_EQ(kel::test::messageOf(*failure), "Enumeration is empty.");
        delete failure;
    }
}

TEST(JEnumeration, PastTheEndTheVectorRefusesTheIndexAndTheCursorStays) {
    JObject object;
    const JPointer<Vector> vector = vectorOf({});
    const JPointer<JEnumeration> walk(vector->elements());
    EXPECT_EQ(thrownMessage<JArrayIndexOutOfBoundsException>([&] { walk->nextElement(); }),
              "JVector::elementAtRef: index is invalid");
    vector->addElement(&object);
    ASSERT_TRUE(walk->hasMoreElements());
    EXPECT_EQ(JPointer<JObject>(walk->nextElement()).get(), &object);
}

} // namespace
