// Arrays, each operation called through the interface.
#include "Host.h"

namespace {

using host::Held;
using host::hold;
using host::referencesOf;
using host::thrownMessage;
using host::Watcher;

/// An array, the same through its interface, and a value.
class HostArray : public ::testing::Test {
protected:
    std::vector<int32_t> numbers() const {
        std::vector<int32_t> found;
        for (int32_t i = 0; i < array.getCount(); ++i) {
            found.push_back(array.getInt(i));
        }
        return found;
    }

    std::string text(int32_t index) const { return hold(constant.getString(index))->getValue(); }

    using Numbers = std::vector<int32_t>;

    Held<KEL_Array> owner = hold(CreateKELArray());
    KELInterface_Array_V1& array = *owner;
    const KELInterface_Array_V1& constant = *owner;
    Held<KEL_Int> seven = hold(CreateKELInt(7));
};

TEST_F(HostArray, AddersAppend) {
    EXPECT_EQ(array.addString("text"), 0);
    EXPECT_EQ(array.addguid(JHashCode(5)), 1);
    EXPECT_EQ(array.addDouble(2.5F), 2);
    EXPECT_EQ(array.addDouble(2.5), 3);
    EXPECT_EQ(array.addInt(1L), 4);
    EXPECT_EQ(array.addInt(2UL), 5);
    EXPECT_EQ(array.addInt(3), 6);
    EXPECT_EQ(array.addBoolean(true), 7);
    EXPECT_EQ(array.addVar(seven.get()), 8);
    EXPECT_EQ(array.getCount(), 9);
    EXPECT_EQ(array.addVar(nullptr), -1);
}

TEST_F(HostArray, GettersBorrowAndConvert) {
    JHashCode guid;
    array.addVar(seven.get());
    EXPECT_EQ(array.getVar(0), seven.get());
    EXPECT_EQ(constant.getVar(0), seven.get());
    EXPECT_EQ(referencesOf(*seven), 2);
    EXPECT_TRUE(constant.getBoolean(0));
    EXPECT_EQ(constant.getInt(0), 7);
    EXPECT_EQ(constant.getDouble(0), 7.0);
    EXPECT_EQ(text(0), "7");
    EXPECT_EQ(constant.getguid(0, guid), JHashCode(7));
}

TEST_F(HostArray, SettersConvertIntoTheElement) {
    array.addString("text");
    array.setInt(0, 5);
    EXPECT_EQ(array.getVar(0)->getType(), KELKind_String);
    EXPECT_EQ(text(0), "5");
    array.setInt(0, 6L);
    array.setInt(0, 7UL);
    EXPECT_EQ(text(0), "7");
    array.setDouble(0, 1.5F);
    array.setDouble(0, 2.5);
    EXPECT_EQ(text(0), "2.500000");
    array.setBoolean(0, true);
    EXPECT_EQ(text(0), "true");
    array.setguid(0, JHashCode(1));
    EXPECT_EQ(text(0), "00000001-0000-0000-0000-000000000000");
    array.setString(0, "abc");
    EXPECT_EQ(text(0), "abc");
    array.setVarValue(0, seven.get());
    EXPECT_EQ(text(0), "7");
}

TEST_F(HostArray, PlacesAreChanged) {
    array.addInt(1);
    array.addInt(2);
    array.insertVar(seven.get(), 2);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 7}));
    array.swapVars(0, 2);
    EXPECT_EQ(numbers(), (Numbers{7, 2, 1}));
    array.setVar(seven.get(), 1);
    EXPECT_EQ(numbers(), (Numbers{7, 7, 1}));
    array.removeVar(0);
    EXPECT_EQ(numbers(), (Numbers{7, 1}));
    array.removeAllVars();
    EXPECT_EQ(numbers(), Numbers{});
}

TEST_F(HostArray, ValuesAreFound) {
    array.addInt(1);
    array.addVar(seven.get());
    EXPECT_TRUE(constant.containsVar(seven.get()));
    EXPECT_EQ(constant.indexOfVar(seven.get()), 1);
    EXPECT_FALSE(constant.containsVar(nullptr));
    EXPECT_EQ(constant.indexOfVar(nullptr), -1);
}

TEST_F(HostArray, AnotherArrayIsAdded) {
    const auto other = hold(CreateKELArray());
    other->addVar(seven.get());
    EXPECT_EQ(array.addVars(other.get()), 0);
    EXPECT_EQ(array.addVars(owner.get()), 0);
    EXPECT_EQ(array.addVars(nullptr), -1);
    EXPECT_EQ(numbers(), (Numbers{7}));
}

TEST_F(HostArray, ABadIndexIsRefused) {
    using BadIndex = KELArrayIndexOutOfBoundsException;
    EXPECT_EQ(thrownMessage<BadIndex>([&] { array.getVar(0); }), "Array index out of bounds.");
    EXPECT_EQ(thrownMessage<BadIndex>([&] { array.insertVar(seven.get(), 1); }),
              "Array index out of bounds.");
    EXPECT_EQ(thrownMessage<BadIndex>([&] { array.removeVar(0); }),
              "KEL_Array::removeVar failed. No element at specified index.");
    EXPECT_EQ(thrownMessage<BadIndex>([&] { array.swapVars(0, 0); }),
              "KEL_Array_Impl::swapVars failed. No element at specified index.");
}

TEST_F(HostArray, OneValueInTwoPlacesIsOneObject) {
    array.addVar(seven.get());
    array.addVar(seven.get());
    array.setInt(0, 9);
    EXPECT_EQ(numbers(), (Numbers{9, 9}));
    EXPECT_EQ(seven->getValue(), 9);
}

TEST_F(HostArray, ACopyIsDeep) {
    array.addVar(seven.get());
    const auto copy = hold(owner->copy());
    seven->setValue(9);
    EXPECT_EQ(dynamic_cast<KEL_Array&>(*copy).getInt(0), 7);
}

} // namespace
