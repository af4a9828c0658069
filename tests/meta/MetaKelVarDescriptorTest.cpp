// Ranges and enumerations of variable descriptors.
#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/ValueStreams.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace kel::test;

namespace {

const std::string notRanged = "Not a ranged variable.";
const std::string notEnumerated = "Not an enumerated variable.";

/// Returns the names of a struct's variables.
std::string namesOf(const KEL_Struct& structure) {
    std::string text;
    const Held<StringEnumeration> names(structure.getVarNames());
    while (names->hasMoreElements()) {
        text.append(text.empty() ? "" : " ").append(names->nextElement());
    }
    return text;
}

std::string allowedBy(MetaKelVarDescriptor& descriptor) {
    return textsOf(*descriptor.getEnum());
}

/// Runs an operation that must not change the descriptor.
template <class Operation> void expectUnchanged(KEL_Impl* value, const Operation& operation) {
    const Held<KEL> before(value->copy());
    operation(dynamic_cast<MetaKelVarDescriptor&>(*value));
    EXPECT_TRUE(value->equalsValue(before.get())) << textOf(value);
}

/// A new descriptor, and ready-made ones of each sort.
class MetaKelVarDescriptorTest : public ::testing::Test {
protected:
    HeldValue held = descriptorOf();
    MetaKelVarDescriptor& empty = asDescriptor(held);
    HeldValue heldRange = intRange(1, 10);
    MetaKelVarDescriptor& range = asDescriptor(heldRange);
    HeldValue heldEnum = enumOf(KELKind_String, arrayOf(stringOf("a"), stringOf("b")));
    MetaKelVarDescriptor& choice = asDescriptor(heldEnum);
    HeldValue five = intOf(5), text = stringOf("text"), nothing{};
};

// ---- Range -------------------------------------------------------------------------------------

TEST_F(MetaKelVarDescriptorTest, WithOnlyOneBoundItIsNotRanged) {
    for (const char* bound : {"min", "max"}) {
        const auto half = descriptorOf("type", intOf(1), bound, intOf(1));
        EXPECT_FALSE(asDescriptor(half).isRanged());
        EXPECT_EQ(kelMessageOf([&] { asDescriptor(half).getMin(); }), notRanged);
        EXPECT_EQ(kelMessageOf([&] { asDescriptor(half).getMax(); }), notRanged);
        EXPECT_TRUE(asDescriptor(half).isValid(intOf(99).get()));
    }
}

TEST_F(MetaKelVarDescriptorTest, EveryFormOfRangeNeedsARange) {
    EXPECT_EQ(kelMessageOf([&] { choice.setRange(1, 2); }), notRanged);
    EXPECT_EQ(kelMessageOf([&] { choice.setRange(1.0, 2.0); }), notRanged);
    EXPECT_EQ(kelMessageOf([&] { choice.setRange(five.get(), five.get()); }), notRanged);
    EXPECT_EQ(kelMessageOf([&] { choice.inRange(1); }), notRanged);
    EXPECT_EQ(kelMessageOf([&] { choice.inRange(1.0); }), notRanged);
    EXPECT_EQ(kelMessageOf([&] { choice.inRange(five.get()); }), notRanged);
    EXPECT_EQ(namesOf(choice), "enum type");
}

TEST_F(MetaKelVarDescriptorTest, BoundsOfIntsAreInclusive) {
    EXPECT_TRUE(range.inRange(10));
    EXPECT_FALSE(range.inRange(11));
    EXPECT_TRUE(range.inRange(1));
    EXPECT_FALSE(range.inRange(0));
    EXPECT_TRUE(range.inRange(five.get()));
}

TEST_F(MetaKelVarDescriptorTest, ForAnIntEverythingIsConvertedToInt) {
    EXPECT_TRUE(range.inRange(10.9));
    EXPECT_FALSE(range.inRange(0.9));
    EXPECT_TRUE(range.inRange(stringOf("7 dwarfs").get()));
    EXPECT_FALSE(range.inRange(stringOf("dwarfs").get()));
    EXPECT_FALSE(range.inRange(arrayOf().get()));
}

TEST_F(MetaKelVarDescriptorTest, ForADoubleEverythingIsConvertedToDouble) {
    const auto doubles = doubleRange(0.5, 1.5);
    EXPECT_TRUE(asDescriptor(doubles).inRange(1));
    EXPECT_TRUE(asDescriptor(doubles).inRange(1.5));
    EXPECT_FALSE(asDescriptor(doubles).inRange(1.500001));
    EXPECT_TRUE(asDescriptor(doubles).inRange(stringOf("0.75").get()));
    EXPECT_FALSE(asDescriptor(doubles).inRange(std::nan("")));
}

TEST_F(MetaKelVarDescriptorTest, NothingIsInTheRangeOfAnotherType) {
    const auto booleans = descriptorOf("type", intOf(2), "min", intOf(0), "max", intOf(9));
    EXPECT_FALSE(asDescriptor(booleans).inRange(stringOf("5").get()));
    EXPECT_FALSE(asDescriptor(booleans).isValid(booleanOf(true).get()));
    for (const KELKind kind : {KELKind_guid, KELKind_String, KELKind_Array}) {
        const auto other = descriptorOf("type", intOf(kind), "min", intOf(0), "max", intOf(9));
        EXPECT_FALSE(asDescriptor(other).inRange(5)) << kind;
    }
}

TEST_F(MetaKelVarDescriptorTest, WithoutATypeNothingIsInRange) {
    range.removeVar("type");
    EXPECT_EQ(range.getVariableType(), 0);
    EXPECT_FALSE(range.inRange(5));
    EXPECT_FALSE(range.isValid(five.get()));
}

TEST_F(MetaKelVarDescriptorTest, ANullValueIsInNoRangeAndNoEnumeration) {
    EXPECT_FALSE(range.inRange(nothing.get()));
    EXPECT_FALSE(empty.inRange(nothing.get())); // not even a failure
    EXPECT_FALSE(choice.inEnum(nothing.get()));
    EXPECT_FALSE(empty.inEnum(nothing.get()));
    EXPECT_FALSE(range.isValid(nullptr));
    EXPECT_FALSE(choice.isValid(nullptr));
}

TEST_F(MetaKelVarDescriptorTest, SetRangeReplacesBothBounds) {
    range.setRange(five.get(), text.get());
    EXPECT_EQ(range.getMin(), five.get());
    EXPECT_EQ(range.getMax(), text.get());
    range.setRange(2, 3);
    EXPECT_EQ(range.getMin()->getType(), KELKind_Int);
    EXPECT_EQ(range.getMax()->toInt(), 3);
    range.setRange(2.5, 3.5);
    EXPECT_EQ(range.getMin()->getType(), KELKind_Double);
    EXPECT_EQ(range.getMax()->toDouble(), 3.5);
}

TEST_F(MetaKelVarDescriptorTest, SetRangeDoesNotCompareTheBounds) {
    range.setRange(10, 1);
    EXPECT_EQ(range.getMin()->toInt(), 10);
    EXPECT_FALSE(range.inRange(5));
}

TEST_F(MetaKelVarDescriptorTest, SetRangeIgnoresNullAlsoWithoutARange) {
    range.setRange(nullptr, five.get());
    range.setRange(five.get(), nullptr);
    empty.setRange(nullptr, five.get());
    EXPECT_EQ(range.getMin()->toInt(), 1);
}

TEST_F(MetaKelVarDescriptorTest, TheBoundsMayBeExchanged) {
    range.setRange(range.getMax(), range.getMin());
    EXPECT_EQ(range.getMin()->toInt(), 10);
    EXPECT_EQ(range.getMax()->toInt(), 1);
}

TEST_F(MetaKelVarDescriptorTest, NullBoundsCountAsZero) {
    const auto broken = descriptorOf("type", intOf(1), "min", nullptr, "max", nullptr);
    MetaKelVarDescriptor& descriptor = asDescriptor(broken);
    EXPECT_TRUE(descriptor.isRanged());
    EXPECT_EQ(descriptor.getMin(), nullptr);
    EXPECT_TRUE(descriptor.inRange(0));
    EXPECT_FALSE(descriptor.inRange(1));
    descriptor.setType(KELKind_Double);
    descriptor.enumerationFromRange(nullptr);
    EXPECT_EQ(allowedBy(descriptor), "");
}

// ---- Enumeration -------------------------------------------------------------------------------

TEST_F(MetaKelVarDescriptorTest, EveryFormOfEnumNeedsAnEnumeration) {
    for (const auto& message :
         {kelMessageOf([&] { range.getEnum(); }), kelMessageOf([&] { range.inEnum(true); }),
          kelMessageOf([&] { range.inEnum("a"); }), kelMessageOf([&] { range.inEnum(1.0); }),
          kelMessageOf([&] { range.inEnum(1); }), kelMessageOf([&] { range.inEnum(five.get()); }),
          kelMessageOf([&] { range.addEnumValue(true); }),
          kelMessageOf([&] { range.addEnumValue("a"); }),
          kelMessageOf([&] { range.addEnumValue(1.0); }),
          kelMessageOf([&] { range.addEnumValue(1); }),
          kelMessageOf([&] { range.addEnumValue(five.get()); }),
          kelMessageOf([&] { range.removeEnumValue(true); }),
          kelMessageOf([&] { range.removeEnumValue("a"); }),
          kelMessageOf([&] { range.removeEnumValue(1.0); }),
          kelMessageOf([&] { range.removeEnumValue(1); }),
          kelMessageOf([&] { range.removeEnumValue(five.get()); })}) {
        EXPECT_EQ(message, notEnumerated);
    }
    EXPECT_EQ(namesOf(range), "max min type");
}

TEST_F(MetaKelVarDescriptorTest, ValuesAreFoundInTheEnumerationByTheirContents) {
    EXPECT_TRUE(choice.inEnum("a"));
    EXPECT_FALSE(choice.inEnum("c"));
    EXPECT_TRUE(choice.inEnum(stringOf("b").get()));
    EXPECT_TRUE(choice.isValid(stringOf("b").get()));
    EXPECT_FALSE(choice.isValid(text.get()));
    EXPECT_FALSE(choice.inEnum(static_cast<const char*>(nullptr)));
}

TEST_F(MetaKelVarDescriptorTest, TypedFormsOfInEnum) {
    const auto mixed = enumOf(KELKind_Int, arrayOf(booleanOf(true), doubleOf(2.5), intOf(3)));
    EXPECT_TRUE(asDescriptor(mixed).inEnum(true));
    EXPECT_FALSE(asDescriptor(mixed).inEnum(false));
    EXPECT_TRUE(asDescriptor(mixed).inEnum(2.5));
    EXPECT_TRUE(asDescriptor(mixed).inEnum(3));
    EXPECT_TRUE(asDescriptor(mixed).inEnum(3.0)); // numbers compare as numbers
    EXPECT_FALSE(asDescriptor(mixed).inEnum("3"));
}

TEST_F(MetaKelVarDescriptorTest, TheEnumerationIsTheArrayItself) {
    EXPECT_EQ(static_cast<KEL*>(choice.getEnum()), at(heldEnum, "enum"));
    choice.getEnum()->addString("c");
    EXPECT_TRUE(choice.inEnum("c"));
}

TEST_F(MetaKelVarDescriptorTest, AddEnumValueAppendsAlsoWhatIsThere) {
    choice.addEnumValue("a");
    choice.addEnumValue(true);
    choice.addEnumValue(2.5);
    choice.addEnumValue(7);
    choice.addEnumValue(text.get());
    EXPECT_EQ(allowedBy(choice), "a b a true 2.500000 7 text");
    EXPECT_EQ(choice.getEnum()->getVar(6), text.get());
}

TEST_F(MetaKelVarDescriptorTest, AddingAndRemovingNullIsIgnored) {
    choice.addEnumValue(nothing.get());
    choice.addEnumValue(static_cast<const char*>(nullptr));
    choice.removeEnumValue(static_cast<const KEL*>(nullptr));
    choice.removeEnumValue(static_cast<const char*>(nullptr));
    empty.addEnumValue(nothing.get());
    empty.removeEnumValue(static_cast<const KEL*>(nullptr));
    EXPECT_EQ(allowedBy(choice), "a b");
}

TEST_F(MetaKelVarDescriptorTest, RemoveEnumValuePassesOverTheOneThatMovesIn) {
    const auto twice = enumOf(KELKind_String, arrayOf(stringOf("a"), stringOf("a"), stringOf("b")));
    asDescriptor(twice).removeEnumValue("a");
    EXPECT_EQ(allowedBy(asDescriptor(twice)), "a b");
    asDescriptor(twice).removeEnumValue(stringOf("a").get());
    EXPECT_EQ(allowedBy(asDescriptor(twice)), "b");
    asDescriptor(twice).removeEnumValue("gone");
    EXPECT_EQ(allowedBy(asDescriptor(twice)), "b");
}

TEST_F(MetaKelVarDescriptorTest, TypedFormsOfRemoveEnumValue) {
    const auto mixed =
        enumOf(KELKind_Int, arrayOf(booleanOf(true), text, doubleOf(2.5), text, intOf(3), text));
    asDescriptor(mixed).removeEnumValue(true);
    asDescriptor(mixed).removeEnumValue(2.5);
    asDescriptor(mixed).removeEnumValue(3);
    EXPECT_EQ(allowedBy(asDescriptor(mixed)), "text text text");
}

TEST_F(MetaKelVarDescriptorTest, TheElementItselfMayBeRemoved) {
    choice.removeEnumValue(choice.getEnum()->getVar(0));
    EXPECT_EQ(allowedBy(choice), "b");
}

TEST_F(MetaKelVarDescriptorTest, ARangeGoesBeforeAnEnumeration) {
    range.addVar("enum", arrayOf(intOf(99)).get());
    EXPECT_TRUE(range.isRanged() && range.isEnumerated());
    EXPECT_FALSE(range.isValid(intOf(99).get()));
    EXPECT_TRUE(range.isValid(five.get()));
}

TEST_F(MetaKelVarDescriptorTest, AnEnumerationThatIsNoListAllowsNothing) {
    for (const HeldValue& broken : {enumOf(KELKind_Int, five), descriptorOf("enum", nullptr)}) {
        MetaKelVarDescriptor& descriptor = asDescriptor(broken);
        EXPECT_TRUE(descriptor.isEnumerated());
        EXPECT_FALSE(descriptor.inEnum(5));
        EXPECT_FALSE(descriptor.isValid(five.get()));
        EXPECT_EQ(kelMessageOf([&] { descriptor.getEnum(); }), notEnumerated);
        EXPECT_EQ(kelMessageOf([&] { descriptor.addEnumValue(1); }), notEnumerated);
        EXPECT_EQ(kelMessageOf([&] { descriptor.removeEnumValue(1); }), notEnumerated);
    }
}

// ---- Lists of values and conversions -----------------------------------------------------------

TEST_F(MetaKelVarDescriptorTest, AddEnumerationListOnlyTellsWhetherItCould) {
    const std::string refusal = "Can only add enumeration list to a KEL_String";
    const auto words = descriptorOf("type", intOf(KELKind_String), "default", text);
    asDescriptor(words).addEnumerationList(five.get());
    asDescriptor(words).addEnumerationList(nullptr);
    choice.addEnumerationList(text.get());
    EXPECT_EQ(namesOf(asDescriptor(words)), "default type");
    EXPECT_EQ(allowedBy(choice), "a b");
    EXPECT_EQ(kelMessageOf([&] { range.addEnumerationList(text.get()); }), refusal);
    EXPECT_EQ(kelMessageOf([&] { empty.addEnumerationList(text.get()); }), refusal);
    range.setType(KELKind_String);
    EXPECT_EQ(kelMessageOf([&] { range.addEnumerationList(nullptr); }), refusal);
    range.addVar("enum", arrayOf().get());
    range.addEnumerationList(nullptr); // the descriptor is enumerated, although it has a range too
}

TEST_F(MetaKelVarDescriptorTest, RemoveEnumerationListIsForStrings) {
    const auto ints = enumOf(KELKind_Int, arrayOf(intOf(1)));
    choice.removeEnumerationList();
    EXPECT_EQ(namesOf(choice), "type");
    EXPECT_EQ(kelMessageOf([&] { asDescriptor(ints).removeEnumerationList(); }),
              "Can only remove enumeration list from a KEL_String");
    EXPECT_TRUE(asDescriptor(ints).isEnumerated());
    range.removeEnumerationList();
    EXPECT_TRUE(range.isRanged());
}

TEST_F(MetaKelVarDescriptorTest, ARangeFromAnEnumerationOfDoubles) {
    const auto low = doubleOf(-1.0), high = doubleOf(7.0);
    const auto doubles = enumOf(KELKind_Double, arrayOf(doubleOf(2.5), low, high));
    asDescriptor(doubles).rangeFromEnumeration();
    EXPECT_EQ(namesOf(asDescriptor(doubles)), "max min type");
    EXPECT_EQ(asDescriptor(doubles).getMin(), low.get()); // the values themselves
    EXPECT_EQ(asDescriptor(doubles).getMax(), high.get());
}

TEST_F(MetaKelVarDescriptorTest, ARangeFromOneValueIsThatValue) {
    const auto doubles = enumOf(KELKind_Double, arrayOf(doubleOf(2.5)));
    asDescriptor(doubles).rangeFromEnumeration();
    EXPECT_EQ(asDescriptor(doubles).getMin(), asDescriptor(doubles).getMax());
    EXPECT_EQ(asDescriptor(doubles).getMin()->toDouble(), 2.5);
}

TEST_F(MetaKelVarDescriptorTest, ARangeFromAnEmptyEnumerationIsAllFiniteDoubles) {
    const auto doubles = enumOf(KELKind_Double, arrayOf());
    asDescriptor(doubles).rangeFromEnumeration();
    EXPECT_EQ(asDescriptor(doubles).getMin()->toDouble(), std::numeric_limits<double>::lowest());
    EXPECT_EQ(asDescriptor(doubles).getMax()->toDouble(), std::numeric_limits<double>::max());
}

TEST_F(MetaKelVarDescriptorTest, ValuesOfAnEnumerationAreComparedAsDoubles) {
    const auto mixed = enumOf(KELKind_Double, arrayOf(intOf(3), stringOf("-1.5"), intOf(10)));
    asDescriptor(mixed).rangeFromEnumeration();
    EXPECT_STREQ(asDescriptor(mixed).getMin()->toString(), "-1.5");
    EXPECT_STREQ(asDescriptor(mixed).getMax()->toString(), "10");
}

TEST_F(MetaKelVarDescriptorTest, ARangeFromAnyOtherEnumerationChangesNothing) {
    const auto ints = enumOf(KELKind_Int, arrayOf(intOf(1), intOf(2)));
    const auto untyped = descriptorOf("enum", arrayOf(doubleOf(1)));
    const auto noList = enumOf(KELKind_Double, five);
    const auto both = doubleRange(0, 1);
    asStruct(both).addVar("enum", arrayOf(doubleOf(5)).get());
    for (KEL_Impl* each :
         {ints.get(), untyped.get(), noList.get(), both.get(), heldEnum.get(), heldRange.get()}) {
        expectUnchanged(each, [](auto& descriptor) { descriptor.rangeFromEnumeration(); });
    }
}

TEST_F(MetaKelVarDescriptorTest, AnEnumerationFromARangeOfDoubles) {
    const auto doubles = doubleRange(0.0, 1.0), extra = doubleOf(0.25);
    asStruct(doubles).putDouble("default", 0.5);
    asDescriptor(doubles).enumerationFromRange(extra.get());
    EXPECT_EQ(namesOf(asDescriptor(doubles)), "default enum type");
    EXPECT_EQ(allowedBy(asDescriptor(doubles)), "0.000000 0.500000 0.250000 1.000000");
    EXPECT_EQ(asDescriptor(doubles).getEnum()->getVar(2), extra.get());
}

TEST_F(MetaKelVarDescriptorTest, AnEnumerationFromARangeWithoutDefaultOrExtra) {
    const auto doubles = doubleRange(0.0, 1.0);
    asDescriptor(doubles).enumerationFromRange(nullptr);
    EXPECT_EQ(allowedBy(asDescriptor(doubles)), "0.000000 1.000000");
}

TEST_F(MetaKelVarDescriptorTest, AnEnumerationFromAnyOtherVariableChangesNothing) {
    const auto both = doubleRange(0, 1);
    asStruct(both).addVar("enum", arrayOf(doubleOf(5)).get());
    for (KEL_Impl* each : {both.get(), heldEnum.get(), heldRange.get(), held.get()}) {
        expectUnchanged(each,
                        [&](auto& descriptor) { descriptor.enumerationFromRange(five.get()); });
    }
}

} // namespace
