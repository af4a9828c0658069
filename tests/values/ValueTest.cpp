// Copies, assigns and compares values.
#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"
#include "values/KeepAlive.h"

#include <cmath>
#include <gtest/gtest.h>
#include <utility>

namespace {

using kel::test::Held;
using kel::test::make;

bool areEqual(const KEL_Impl& a, const KEL_Impl& b) {
    EXPECT_EQ(a.equalsValue(&b), b.equalsValue(&a));
    return a.equalsValue(&b);
}

TEST(Value, IntAndDoubleCompareAsNumbers) {
    EXPECT_TRUE(areEqual(*make<KEL_Int_Impl>(7), *make<KEL_Double_Impl>(7.0)));
    EXPECT_FALSE(areEqual(*make<KEL_Int_Impl>(7), *make<KEL_Double_Impl>(7.5)));
    EXPECT_TRUE(areEqual(*make<KEL_Int_Impl>(INT32_MIN), *make<KEL_Double_Impl>(-2147483648.0)));
    EXPECT_FALSE(areEqual(*make<KEL_Int_Impl>(0), *make<KEL_Double_Impl>(4294967296.0)));
    EXPECT_FALSE(areEqual(*make<KEL_Int_Impl>(0), *make<KEL_Double_Impl>(std::nan(""))));
}

TEST(Value, ZerosAreEqualAndSoAreNans) {
    EXPECT_TRUE(areEqual(*make<KEL_Double_Impl>(0.0), *make<KEL_Double_Impl>(-0.0)));
    EXPECT_TRUE(
        areEqual(*make<KEL_Double_Impl>(std::nan("")), *make<KEL_Double_Impl>(-std::nan(""))));
    EXPECT_FALSE(areEqual(*make<KEL_Double_Impl>(std::nan("")), *make<KEL_Double_Impl>(0.0)));
}

TEST(Value, IntAndDoubleCompareAsNumbersInsideContainers) {
    const auto first = make<KEL_Array_Impl>();
    const auto second = make<KEL_Array_Impl>();
    first->addInt(7);
    second->addDouble(7.0);
    EXPECT_TRUE(areEqual(*first, *second));
}

TEST(Value, OtherKindsAreUnequalEvenWithTheSameForms) {
    EXPECT_FALSE(areEqual(*make<KEL_Boolean_Impl>(true), *make<KEL_Int_Impl>(1)));
    EXPECT_FALSE(areEqual(*make<KEL_String_Impl>("1"), *make<KEL_Int_Impl>(1)));
    EXPECT_FALSE(areEqual(*make<KEL_guid_Impl>(JHashCode(1)), *make<KEL_Int_Impl>(1)));
    EXPECT_FALSE(areEqual(*make<KEL_Boolean_Impl>(true), *make<KEL_String_Impl>("true")));
}

TEST(Value, ArraysAreEqualElementByElementInOrder) {
    const auto arrayOf = [](std::initializer_list<int32_t> numbers) {
        auto array = make<KEL_Array_Impl>();
        for (const int32_t number : numbers) {
            array->addInt(number);
        }
        return array;
    };
    EXPECT_TRUE(areEqual(*arrayOf({1, 2}), *arrayOf({1, 2})));
    EXPECT_FALSE(areEqual(*arrayOf({1, 2}), *arrayOf({2, 1})));
    EXPECT_FALSE(areEqual(*arrayOf({1, 2}), *arrayOf({1, 2, 3})));
    EXPECT_TRUE(areEqual(*arrayOf({}), *arrayOf({})));
}

TEST(Value, StructsAreEqualNameByNameWhateverTheOrderOfAddition) {
    const auto first = make<KEL_Struct_Impl>();
    const auto second = make<KEL_Struct_Impl>();
    first->putInt("a", 1);
    first->putInt("b", 2);
    second->putInt("b", 2);
    second->putInt("a", 1);
    EXPECT_TRUE(areEqual(*first, *second));
    second->renameVar("b", "c");
    EXPECT_FALSE(areEqual(*first, *second));
}

TEST(Value, ANullVariableEqualsOnlyANullVariable) {
    const auto first = make<KEL_Struct_Impl>();
    const auto second = make<KEL_Struct_Impl>();
    first->addVar("x", nullptr);
    second->addVar("x", nullptr);
    EXPECT_TRUE(areEqual(*first, *second));
    second->putInt("x", 0);
    EXPECT_FALSE(areEqual(*first, *second));
}

TEST(Value, SharingIsNoPartOfEquality) {
    const auto shared = make<KEL_Array_Impl>();
    const auto separate = make<KEL_Array_Impl>();
    const auto element = make<KEL_Int_Impl>(1);
    shared->addVar(element.get());
    shared->addVar(element.get());
    separate->addInt(1);
    separate->addInt(1);
    EXPECT_TRUE(areEqual(*shared, *separate));
}

TEST(Value, ACopyOfAContainerIsDeep) {
    const auto outer = make<KEL_Array_Impl>();
    const auto inner = make<KEL_Struct_Impl>();
    inner->putInt("x", 1);
    outer->addVar(inner.get());
    const Held<KEL> copy(outer->copy());
    inner->setInt("x", 2);
    const auto* copied = dynamic_cast<KEL_Struct*>(dynamic_cast<KEL_Array&>(*copy).getVar(0));
    EXPECT_EQ(copied->getInt("x"), 1);
}

TEST(Value, ACopyHoldsAnInt0ForANullVariable) {
    const auto structure = make<KEL_Struct_Impl>();
    structure->addVar("x", nullptr);
    const Held<KEL> copy(structure->copy());
    const auto& copied = dynamic_cast<const KEL_Struct&>(*copy);
    ASSERT_NE(copied.getVar("x"), nullptr);
    EXPECT_EQ(copied.getVar("x")->getType(), KELKind_Int);
    EXPECT_EQ(copied.getInt("x"), 0);
}

TEST(Value, ACopyOfAStringHasATextOfItsOwn) {
    const auto value = make<KEL_String_Impl>("text");
    const Held<KEL> copy(value->copy());
    value->setValue("changed");
    EXPECT_STREQ(copy->toString(), "text");
}

TEST(Value, AContainerTakesOverCopies) {
    const auto source = make<KEL_Array_Impl>();
    const auto target = make<KEL_Array_Impl>();
    source->addInt(1);
    target->addInt(9);
    target->assign(source.get());
    EXPECT_NE(target->getVar(0), source->getVar(0));
    source->setInt(0, 2);
    EXPECT_EQ(target->getInt(0), 1);
}

TEST(Value, AContainerMayTakeOverAPartOfItself) {
    const auto outer = make<KEL_Array_Impl>();
    const auto inner = make<KEL_Array_Impl>();
    inner->addInt(7);
    outer->addVar(inner.get());
    outer->assign(outer->getVar(0));
    EXPECT_TRUE(outer->equalsValue(inner.get()));
}

TEST(Value, APartMayTakeOverItsContainer) {
    const auto outer = make<KEL_Struct_Impl>();
    outer->addVar("inner", make<KEL_Struct_Impl>().get());
    KEL* inner = std::as_const(*outer).getVar("inner");
    inner->assign(outer.get());
    const auto* nested = dynamic_cast<const KEL_Struct*>(inner);
    EXPECT_EQ(nested->getCount(), 1);
    EXPECT_EQ(dynamic_cast<const KEL_Struct*>(nested->getVar("inner"))->getCount(), 0);
}

TEST(Value, AssigningItselfKeepsTheElementsOfAContainer) {
    const auto array = make<KEL_Array_Impl>();
    array->addInt(1);
    const KEL* element = array->getVar(0);
    array->assign(array.get());
    EXPECT_EQ(array->getVar(0), element);
}

TEST(Value, AManagerTakesOverTheSameElements) {
    const auto source = make<KEL_Manager_Impl>();
    const auto target = make<KEL_Manager_Impl>();
    const auto element = make<KEL_Int_Impl>(1);
    JHashCode identity;
    source->addKel(element.get());
    target->assign(source.get());
    EXPECT_EQ(target->size(), 1);
    EXPECT_EQ(target->getKel(element->getHashCode(identity)), element.get());
}

TEST(Value, ConvertingUsesTheContainersRules) {
    const auto truth = make<KEL_Boolean_Impl>(false);
    truth->assignConverted(make<KEL_Int_Impl>(2).get(), true);
    EXPECT_TRUE(truth->getValue()); // its own setInt would store false
    truth->assignConverted(make<KEL_Double_Impl>(1.0).get(), true);
    EXPECT_FALSE(truth->getValue());
}

TEST(Value, AForeignImplementationIsNoValueOfTheLibrary) {
    EXPECT_EQ(KEL_Impl::of(static_cast<KEL*>(nullptr)), nullptr);
    EXPECT_EQ(KEL_Impl::of(static_cast<const KEL*>(nullptr)), nullptr);
}

TEST(Value, SurvivesTheReleaseOfItsMakerInsideAContainer) {
    const auto array = make<KEL_Array_Impl>();
    KEL* value = new KEL_Int_Impl(7);
    array->addVar(value);
    EXPECT_EQ(value->release(), 1);
    EXPECT_EQ(array->getInt(0), 7);
}

TEST(KeepAlive, NullIsNull) {
    EXPECT_EQ(kel::keepAlive(nullptr).get(), nullptr);
}

TEST(Value, IsEqualAsAnObjectToOneOfItsIdentity) {
    const JPointer<KEL_Int_Impl> value(new KEL_Int_Impl(5));
    const JPointer<KEL_Int_Impl> other(new KEL_Int_Impl(5));
    const auto asObject = [](const JPointer<KEL_Int_Impl>& object) {
        return static_cast<const JObject*>(object.get());
    };
    EXPECT_TRUE(value->equals(asObject(value)));
    EXPECT_FALSE(value->equals(asObject(other)));
    EXPECT_FALSE(value->equals(static_cast<const JObject*>(nullptr)));
}

} // namespace
