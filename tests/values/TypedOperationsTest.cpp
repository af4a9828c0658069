// Tests the typed operations of containers: the result of each getter and each setter for a value
// of each kind, and the value that each adder and putter stores. Arrays and all kinds with the
// operations of a struct follow the same rules.
#include "support/SampleGuids.h"
#include "support/Samples.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>
#include <string>

using namespace kel::test;

namespace {

const std::string zeros = "-0000-0000-0000-000000000000";

/// Returns the kind and the text of a value.
std::string described(const KEL* value) {
    if (value == nullptr) {
        return "null";
    }
    const char* text = value->toString();
    return std::to_string(value->getType()) + ":" + (text == nullptr ? "-" : text);
}

/// A watched container of one element, or of the variable x. A call takes the container and the
/// index or the name.
class Place {
public:
    Place(KELKind kind, const HeldValue& value) : container_(kel::createValue(kind, nullptr)) {
        auto* holder = dynamic_cast<kel::StructHolder*>(container_.get());
        if (kind == KELKind_Array) {
            asArray(container_).addVar(value.get());
        } else if (holder != nullptr) {
            holder->inner().addVar("x", value.get());
        } else {
            asStruct(container_).addVar("x", value.get());
        }
        watch(container_.get(), watcher);
    }

    template <class Operation> auto call(const Operation& operation) const {
        if (auto* array = dynamic_cast<KEL_Array*>(container_.get())) {
            return operation(*array, int32_t{0});
        }
        return operation(asStruct(container_), "x");
    }

    const KEL* value() const {
        return call([](const auto& container, auto place) { return container.getVar(place); });
    }

    Watcher watcher;

private:
    HeldValue container_;
};

/// Every test below runs for each kind of container.
class TypedOperations : public ::testing::TestWithParam<KELKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, TypedOperations,
                         ::testing::Values(KELKind_Array, KELKind_Struct, KELKind_MetaKel,
                                           KELKind_MetaKelDescriptor,
                                           KELKind_MetaKelVarDescriptor));

// ---- Getters -----------------------------------------------------------------------------------

TEST_P(TypedOperations, GettersConvertByKind) {
    const struct {
        HeldValue value;
        bool boolean;
        int32_t number;
        double real;
        std::string text;
        JHashCode guid;
    } rows[] = {
        {intOf(2), true, 2, 2.0, "2", JHashCode(2)},
        {booleanOf(true), true, 1, 1.0, "true", JHashCode(1)},
        {doubleOf(0.5), true, 0, 0.5, "0.500000", JHashCode()},
        {guidOf(JHashCode(5)), true, 5, 5.0, "00000005" + zeros, JHashCode(5)},
        {stringOf("12abc"), true, 12, 12.0, "12abc", JHashCode(12)},
        {structOf(), false, 0, 0.0, "(null)", JHashCode()},
        {HeldValue(), false, 0, 0.0, "(null)", JHashCode()},
    };
    for (const auto& row : rows) {
        if (!row.value && GetParam() == KELKind_Array) {
            continue; // an array has no null elements
        }
        const Place place(GetParam(), row.value);
        JHashCode guid(9, 9, 9, 9);
        EXPECT_EQ(place.call([](auto& c, auto at) { return c.getBoolean(at); }), row.boolean);
        EXPECT_EQ(place.call([](auto& c, auto at) { return c.getInt(at); }), row.number);
        EXPECT_EQ(place.call([](auto& c, auto at) { return c.getDouble(at); }), row.real);
        EXPECT_EQ(place.call([&](auto& c, auto at) { return &c.getguid(at, guid); }), &guid);
        EXPECT_EQ(guid, row.guid);
        const Held<KEL_String> text(place.call([](auto& c, auto at) { return c.getString(at); }));
        EXPECT_EQ(text ? text->getValue() : "(null)", row.text);
        EXPECT_EQ(place.watcher.calls(), 0);
    }
}

TEST_P(TypedOperations, GetStringOfAStringIsTheValueWithAReference) {
    const HeldValue value = stringOf("text");
    const Place place(GetParam(), value);
    const Held<KEL_String> text(place.call([](auto& c, auto at) { return c.getString(at); }));
    EXPECT_EQ(static_cast<KEL*>(text.get()), value.get());
    EXPECT_EQ(referencesOf(*value), 3); // the test's, the container's and the new one
}

// ---- Setters -----------------------------------------------------------------------------------

/// A call, and its results for an Int, a Boolean, a Double, a guid and a String.
struct Setter {
    const char* name;
    std::function<void(const Place&)> set;
    std::vector<std::string> expected;
};

template <class Call>
Setter setter(const char* name, const Call& call, const std::vector<std::string>& expected) {
    return {name, [call](const Place& place) { place.call(call); }, expected};
}

std::vector<Setter> everySetter() {
    return {
        setter("text", [](auto& c, auto at) { c.setString(at, "77x"); },
               {"77", "true", "77.000000", "0000004D" + zeros, "77x"}),
        setter("no text", [](auto& c, auto at) { c.setString(at, ""); },
               {"0", "false", "0.000000", "00000000" + zeros, ""}),
        setter("double", [](auto& c, auto at) { c.setDouble(at, -2.7); },
               {"-2", "false", "-2.700000", "FFFFFFFE" + zeros, "-2.700000"}),
        setter("float", [](auto& c, auto at) { c.setDouble(at, 0.25F); },
               {"0", "true", "0.250000", "00000000" + zeros, "0.250000"}),
        setter("int", [](auto& c, auto at) { c.setInt(at, int32_t{5}); },
               {"5", "true", "5.000000", "00000005" + zeros, "5"}),
        // Only the low 32 bits of wider integers count.
        setter("long", [](auto& c, auto at) { c.setInt(at, static_cast<long>(4294967303)); },
               {"7", "true", "7.000000", "00000007" + zeros, "7"}),
        setter("negative long", [](auto& c, auto at) { c.setInt(at, -1L); },
               {"-1", "true", "-1.000000", "FFFFFFFF" + zeros, "-1"}),
        setter("unsigned long",
               [](auto& c, auto at) { c.setInt(at, static_cast<unsigned long>(4294967304)); },
               {"8", "true", "8.000000", "00000008" + zeros, "8"}),
        setter("guid", [](auto& c, auto at) { c.setguid(at, sampleCode); },
               {"2147483647", "true", "2147483647.000000", sampleGuid, sampleGuid}),
        setter("true", [](auto& c, auto at) { c.setBoolean(at, true); },
               {"1", "true", "1.000000", "00000001" + zeros, "true"}),
        setter("false", [](auto& c, auto at) { c.setBoolean(at, false); },
               {"0", "false", "0.000000", "00000000" + zeros, "false"}),
        setter("value", [](auto& c, auto at) { c.setVarValue(at, stringOf("34x").get()); },
               {"34", "true", "34.000000", "00000022" + zeros, "34x"}),
    };
}

TEST_P(TypedOperations, SettersConvertIntoTheValueAndTellItOnce) {
    for (const Setter& row : everySetter()) {
        const HeldValue values[] = {intOf(99), booleanOf(row.expected[1] == "false"), doubleOf(99),
                                    guidOf(JHashCode(99)), stringOf("99")};
        for (std::size_t i = 0; i < row.expected.size(); ++i) {
            const Place place(GetParam(), values[i]);
            const int32_t kind = values[i]->getType();
            Watcher ofValue;
            watch(values[i].get(), ofValue);
            row.set(place);
            EXPECT_EQ(place.value(), values[i].get()) << row.name;
            EXPECT_EQ(described(place.value()), std::to_string(kind) + ":" + row.expected[i])
                << row.name;
            EXPECT_EQ(ofValue.calls(), 1) << row.name;
            if (GetParam() == KELKind_Array || GetParam() == KELKind_Struct) {
                EXPECT_EQ(place.watcher.calls(), 0) << row.name;
            }
        }
    }
}

TEST_P(TypedOperations, SettersIntoAKindWithoutTheFormChangeNothing) {
    const HeldValue container = arrayOf(intOf(1));
    const Place place(GetParam(), container);
    Watcher ofValue;
    watch(container.get(), ofValue);
    for (const Setter& row : everySetter()) {
        row.set(place);
    }
    EXPECT_TRUE(container->equalsValue(arrayOf(intOf(1)).get()));
    EXPECT_EQ(ofValue.calls() + place.watcher.calls(), 0);
}

TEST_P(TypedOperations, WhatHasNoFormIsNotSet) {
    const HeldValue text = stringOf("12abc");
    const Place place(GetParam(), text);
    Watcher ofValue;
    watch(text.get(), ofValue);
    place.call([](auto& c, auto at) { c.setString(at, nullptr); });
    place.call([](auto& c, auto at) { c.setVarValue(at, nullptr); });
    place.call([](auto& c, auto at) { c.setVarValue(at, arrayOf().get()); });
    EXPECT_EQ(described(place.value()), "6:12abc");
    EXPECT_EQ(ofValue.calls() + place.watcher.calls(), 0);
}

TEST_P(TypedOperations, SetVarValueOfAContainerTakesADeepCopy) {
    const HeldValue source = arrayOf(intOf(1)), target = arrayOf();
    const Place place(GetParam(), target);
    place.call([&](auto& c, auto at) { c.setVarValue(at, source.get()); });
    EXPECT_TRUE(target->equalsValue(source.get()));
    EXPECT_NE(at(target, 0), at(source, 0));
}

TEST_P(TypedOperations, SetVarValueByTheValueItselfKeepsIt) {
    const HeldValue text = stringOf("12abc");
    const Place place(GetParam(), text);
    place.call([&](auto& c, auto at) { c.setVarValue(at, text.get()); });
    EXPECT_EQ(described(place.value()), "6:12abc");
}

// ---- Variables without a value -----------------------------------------------------------------

class TypedStructOperations : public TypedOperations {
protected:
    Place empty{GetParam(), HeldValue()};
    HeldValue held = HeldValue(kel::createValue(GetParam(), nullptr));
    KEL_Struct& structure = asStruct(held);
    Watcher watcher;
};

INSTANTIATE_TEST_SUITE_P(Kinds, TypedStructOperations, ::testing::ValuesIn(structKinds));

TEST_P(TypedStructOperations, SettersOnANullVariableStoreANewValue) {
    empty.call([](auto& c, auto at) { c.setVarValue(at, nullptr); });
    EXPECT_EQ(empty.value(), nullptr);
    empty.call([](auto& c, auto at) { c.setString(at, "x"); });
    EXPECT_EQ(described(empty.value()), "6:x");
    EXPECT_EQ(referencesOf(*const_cast<KEL*>(empty.value())), 1);
}

TEST_P(TypedStructOperations, SetVarValueOnANullVariableStoresTheObjectItself) {
    const HeldValue seven = intOf(7);
    empty.call([&](auto& c, auto at) { c.setVarValue(at, seven.get()); });
    EXPECT_EQ(empty.value(), seven.get());
}

TEST_P(TypedStructOperations, NullIsIgnoredAlsoUnderAnUnknownName) {
    watch(held.get(), watcher);
    structure.setVarValue("unknown", nullptr);
    structure.setString("unknown", nullptr);
    structure.putString("new", nullptr);
    EXPECT_EQ(structure.getCount(), 0);
    EXPECT_EQ(watcher.calls(), 0);
}

// ---- Putters and adders ------------------------------------------------------------------------

TEST_P(TypedStructOperations, PuttersStoreANewValueOfTheirKind) {
    watch(held.get(), watcher);
    structure.putString("a", "x");
    structure.putguid("b", sampleCode);
    structure.putDouble("c", 2.5);
    structure.putDouble("d", 0.25F);
    structure.putInt("e", int32_t{7});
    structure.putInt("f", static_cast<long>(4294967304));
    structure.putInt("g", static_cast<unsigned long>(4294967305));
    structure.putBoolean("h", true);
    EXPECT_EQ(watcher.calls(), 8);
    std::string all;
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
        all += described(at(held, name)) + " ";
        EXPECT_EQ(referencesOf(*at(held, name)), 1) << name;
    }
    EXPECT_EQ(all, "6:x 4:" + sampleGuid + " 3:2.500000 3:0.250000 1:7 1:8 1:9 2:true ");
}

TEST_P(TypedStructOperations, PuttersReplaceAValueOfAnotherKind) {
    structure.putString("a", "x");
    structure.putInt("a", int32_t{5});
    EXPECT_EQ(described(at(held, "a")), "1:5");
}

TEST(TypedArrayOperations, AddersAppendANewValueOfTheirKindAndAnswerItsIndex) {
    const HeldValue held = arrayOf();
    KEL_Array& array = asArray(held);
    Watcher watcher;
    watch(held.get(), watcher);
    EXPECT_EQ(array.addString("x"), 0);
    EXPECT_EQ(array.addguid(sampleCode), 1);
    EXPECT_EQ(array.addDouble(2.5), 2);
    EXPECT_EQ(array.addDouble(0.25F), 3);
    EXPECT_EQ(array.addInt(int32_t{7}), 4);
    EXPECT_EQ(array.addInt(static_cast<long>(4294967304)), 5);
    EXPECT_EQ(array.addInt(static_cast<unsigned long>(4294967305)), 6);
    EXPECT_EQ(array.addBoolean(true), 7);
    EXPECT_EQ(array.addString(nullptr), -1);
    EXPECT_EQ(watcher.calls(), 8);
    std::string all;
    for (int32_t i = 0; i < array.getCount(); ++i) {
        all += described(array.getVar(i)) + " ";
    }
    EXPECT_EQ(all, "6:x 4:" + sampleGuid + " 3:2.500000 3:0.250000 1:7 1:8 1:9 2:true ");
}

} // namespace
