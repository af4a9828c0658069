// The typed getters, setters and adders of arrays.
#include "support/Held.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::referencesOf;
using kel::test::Watcher;

const JHashCode sample(0x3F2504E0U, 0x11D34F89U, 0x05030C9AU, 0x01332CE8U);

/// An array with one element of each scalar kind: Int 2, Boolean, Double 0.5, guid, String, and an
/// empty array.
class KEL_ArrayTyped : public ::testing::Test {
protected:
    KEL_ArrayTyped() {
        array->addInt(2);
        array->addBoolean(true);
        array->addDouble(0.5);
        array->addguid(JHashCode(5));
        array->addString("12abc");
        array->addVar(make<KEL_Array_Impl>().get());
        array->addObserver(&watcher);
    }

    static constexpr int32_t int2 = 0;
    static constexpr int32_t booleanTrue = 1;
    static constexpr int32_t doubleHalf = 2;
    static constexpr int32_t guid5 = 3;
    static constexpr int32_t string12abc = 4;
    static constexpr int32_t emptyArray = 5;

    std::string text(int32_t index) const {
        const Held<KEL_String> string(array->getString(index));
        return string ? string->getValue() : "(null)";
    }

    JHashCode guid(int32_t index) const {
        JHashCode out(9, 9, 9, 9);
        return array->getguid(index, out);
    }

    int32_t kind(int32_t index) const { return array->getVar(index)->getType(); }

    Watcher watcher;
    Held<KEL_Array_Impl> array = make<KEL_Array_Impl>();
};

TEST_F(KEL_ArrayTyped, GetBooleanConvertsByKind) {
    EXPECT_TRUE(array->getBoolean(int2));
    EXPECT_TRUE(array->getBoolean(booleanTrue));
    EXPECT_TRUE(array->getBoolean(doubleHalf));
    EXPECT_TRUE(array->getBoolean(guid5));
    EXPECT_TRUE(array->getBoolean(string12abc));
    EXPECT_FALSE(array->getBoolean(emptyArray));
}

TEST_F(KEL_ArrayTyped, GetIntConvertsByKind) {
    EXPECT_EQ(array->getInt(int2), 2);
    EXPECT_EQ(array->getInt(booleanTrue), 1);
    EXPECT_EQ(array->getInt(doubleHalf), 0);
    EXPECT_EQ(array->getInt(guid5), 5);
    EXPECT_EQ(array->getInt(string12abc), 12);
    EXPECT_EQ(array->getInt(emptyArray), 0);
}

TEST_F(KEL_ArrayTyped, GetDoubleConvertsByKind) {
    EXPECT_EQ(array->getDouble(int2), 2.0);
    EXPECT_EQ(array->getDouble(booleanTrue), 1.0);
    EXPECT_EQ(array->getDouble(doubleHalf), 0.5);
    EXPECT_EQ(array->getDouble(guid5), 5.0);
    EXPECT_EQ(array->getDouble(string12abc), 12.0);
    EXPECT_EQ(array->getDouble(emptyArray), 0.0);
}

TEST_F(KEL_ArrayTyped, GetStringConvertsByKind) {
    EXPECT_EQ(text(int2), "2");
    EXPECT_EQ(text(booleanTrue), "true");
    EXPECT_EQ(text(doubleHalf), "0.500000");
    EXPECT_EQ(text(guid5), "00000005-0000-0000-0000-000000000000");
    EXPECT_EQ(text(string12abc), "12abc");
    EXPECT_EQ(text(emptyArray), "(null)");
}

TEST_F(KEL_ArrayTyped, GetStringOfAStringIsTheElementWithAReference) {
    const Held<KEL_String> string(array->getString(string12abc));
    EXPECT_EQ(static_cast<KEL*>(string.get()), array->getVar(string12abc));
    EXPECT_EQ(referencesOf(*string), 2);
}

TEST_F(KEL_ArrayTyped, GetguidConvertsByKind) {
    EXPECT_EQ(guid(int2), JHashCode(2));
    EXPECT_EQ(guid(booleanTrue), JHashCode(1));
    EXPECT_EQ(guid(doubleHalf), JHashCode(0));
    EXPECT_EQ(guid(guid5), JHashCode(5));
    EXPECT_EQ(guid(string12abc), JHashCode(12));
    EXPECT_EQ(guid(emptyArray), JHashCode());
}

TEST_F(KEL_ArrayTyped, GetguidReturnsItsArgument) {
    JHashCode out;
    EXPECT_EQ(&array->getguid(guid5, out), &out);
}

TEST_F(KEL_ArrayTyped, SetIntIntoAStringKeepsAString) {
    array->setInt(string12abc, 5);
    EXPECT_EQ(kind(string12abc), KELKind_String);
    EXPECT_EQ(text(string12abc), "5");
}

TEST_F(KEL_ArrayTyped, SettersKeepTheElementsObjectAndIdentity) {
    const KEL* before = array->getVar(int2);
    array->setString(int2, "77x");
    EXPECT_EQ(array->getVar(int2), before);
    EXPECT_EQ(array->getInt(int2), 77);
}

TEST_F(KEL_ArrayTyped, SetStringConvertsIntoEachKind) {
    array->setString(booleanTrue, "");
    EXPECT_FALSE(array->getBoolean(booleanTrue));
    array->setString(doubleHalf, "2.25");
    EXPECT_EQ(array->getDouble(doubleHalf), 2.25);
    array->setString(guid5, "9");
    EXPECT_EQ(guid(guid5), JHashCode(9));
    array->setString(string12abc, "xyz");
    EXPECT_EQ(text(string12abc), "xyz");
}

TEST_F(KEL_ArrayTyped, SetDoubleConvertsIntoEachKind) {
    array->setDouble(int2, -2.7);
    EXPECT_EQ(array->getInt(int2), -2);
    array->setDouble(booleanTrue, 1.0); // the containers' rule: true if it truncates to 0
    EXPECT_FALSE(array->getBoolean(booleanTrue));
    array->setDouble(string12abc, 1.5);
    EXPECT_EQ(text(string12abc), "1.500000");
    array->setDouble(doubleHalf, 0.25F);
    EXPECT_EQ(array->getDouble(doubleHalf), 0.25);
}

TEST_F(KEL_ArrayTyped, SetIntTakesTheLow32BitsOfWiderIntegers) {
    array->setInt(int2, static_cast<long>(4294967303));
    EXPECT_EQ(array->getInt(int2), 7);
    array->setInt(int2, static_cast<unsigned long>(4294967304));
    EXPECT_EQ(array->getInt(int2), 8);
    array->setInt(int2, -1L);
    EXPECT_EQ(array->getInt(int2), -1);
}

TEST_F(KEL_ArrayTyped, SetguidConvertsIntoEachKind) {
    array->setguid(guid5, sample);
    EXPECT_EQ(guid(guid5), sample);
    array->setguid(int2, sample);
    EXPECT_EQ(array->getInt(int2), 2147483647);
    array->setguid(string12abc, sample);
    EXPECT_EQ(text(string12abc), "3F2504E0-4F89-11D3-9A0C-0305E82C3301");
}

TEST_F(KEL_ArrayTyped, SetBooleanConvertsIntoEachKind) {
    array->setBoolean(int2, true);
    EXPECT_EQ(array->getInt(int2), 1);
    array->setBoolean(doubleHalf, false);
    EXPECT_EQ(array->getDouble(doubleHalf), 0.0);
    array->setBoolean(string12abc, false);
    EXPECT_EQ(text(string12abc), "false");
    array->setBoolean(guid5, true);
    EXPECT_EQ(guid(guid5), JHashCode(1));
}

TEST_F(KEL_ArrayTyped, SettersIntoAKindWithoutTheFormChangeNothing) {
    Watcher inner;
    dynamic_cast<KEL_Observable*>(array->getVar(emptyArray))->addObserver(&inner);
    array->setInt(emptyArray, 5);
    array->setString(emptyArray, "x");
    EXPECT_EQ(kind(emptyArray), KELKind_Array);
    EXPECT_EQ(inner.calls(), 0);
}

TEST_F(KEL_ArrayTyped, SetStringOfNullChangesNothing) {
    array->setString(string12abc, nullptr);
    EXPECT_EQ(text(string12abc), "12abc");
    EXPECT_EQ(kel::test::thrownMessage<KELArrayIndexOutOfBoundsException>(
                  [&] { array->setString(array->getCount(), nullptr); }),
              "Array index out of bounds.");
}

TEST_F(KEL_ArrayTyped, SetVarValueTakesAnyKind) {
    array->setVarValue(string12abc, make<KEL_Boolean_Impl>(true).get());
    EXPECT_EQ(text(string12abc), "true");
    array->setVarValue(int2, make<KEL_String_Impl>("34x").get());
    EXPECT_EQ(array->getInt(int2), 34);
    array->setVarValue(int2, nullptr);
    EXPECT_EQ(array->getInt(int2), 34);
}

TEST_F(KEL_ArrayTyped, SetVarValueOfAnArrayTakesADeepCopy) {
    const auto source = make<KEL_Array_Impl>();
    source->addInt(1);
    array->setVarValue(emptyArray, source.get());
    source->setInt(0, 2);
    EXPECT_EQ(dynamic_cast<KEL_Array*>(array->getVar(emptyArray))->getInt(0), 1);
}

TEST_F(KEL_ArrayTyped, SetVarValueByTheElementItselfKeepsIt) {
    array->setVarValue(string12abc, array->getVar(string12abc));
    EXPECT_EQ(text(string12abc), "12abc");
}

TEST_F(KEL_ArrayTyped, SettersNotifyTheElementOnceAndNotTheArray) {
    Watcher element;
    dynamic_cast<KEL_Observable*>(array->getVar(int2))->addObserver(&element);
    array->setInt(int2, 3);
    array->setVarValue(int2, make<KEL_Int_Impl>(4).get());
    EXPECT_EQ(element.calls(), 2);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(KEL_ArrayTyped, AddersAppendANewValueOfTheirKindAndAnswerItsIndex) {
    EXPECT_EQ(array->addString("x"), 6);
    EXPECT_EQ(array->addguid(sample), 7);
    EXPECT_EQ(array->addDouble(2.5), 8);
    EXPECT_EQ(array->addDouble(2.5F), 9);
    EXPECT_EQ(array->addInt(1), 10);
    EXPECT_EQ(array->addInt(1L), 11);
    EXPECT_EQ(array->addInt(1UL), 12);
    EXPECT_EQ(array->addBoolean(true), 13);
    const int32_t kinds[] = {6, 4, 3, 3, 1, 1, 1, 2};
    for (int32_t i = 6; i < 14; ++i) {
        EXPECT_EQ(kind(i), kinds[i - 6]);
    }
    EXPECT_EQ(watcher.calls(), 8);
}

TEST_F(KEL_ArrayTyped, AddersKeepTheirValue) {
    EXPECT_EQ(text(array->addString("x")), "x");
    EXPECT_EQ(text(array->addString(nullptr)), "");
    EXPECT_EQ(guid(array->addguid(sample)), sample);
    EXPECT_EQ(array->getDouble(array->addDouble(0.25F)), 0.25);
    EXPECT_EQ(array->getInt(array->addInt(static_cast<long>(4294967303))), 7);
    EXPECT_EQ(array->getInt(array->addInt(static_cast<unsigned long>(4294967304))), 8);
}

} // namespace
