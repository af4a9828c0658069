// What every value does, as a host sees it.
#include "Host.h"

#include <functional>

namespace {

using host::Held;
using host::hold;
using host::thrownMessage;
using host::Watcher;

/// One value of each kind that a factory makes.
std::vector<Held<KEL>> oneOfEachKind() {
    std::vector<Held<KEL>> values;
    for (KEL* value : std::initializer_list<KEL*>{
             CreateKELInt(1), CreateKELBoolean(true), CreateKELDouble(1.5), CreateKELGuid(),
             CreateKELMemBlock(4, "abc"), CreateKELString("text"), CreateKELArray(),
             CreateKELStruct(), CreateKELManager()}) {
        values.emplace_back(value);
    }
    return values;
}

JHashCode identityOf(const KELInterface_RefCount_V1& value) {
    JHashCode identity;
    return value.getHashCode(identity);
}

TEST(HostValues, AnswerTheirKind) {
    int32_t kind = 1;
    for (const Held<KEL>& value : oneOfEachKind()) {
        const KELInterface_RefCount_V1& counted = *value;
        EXPECT_EQ(counted.getType(), kind++);
    }
}

TEST(HostValues, AreCountedThroughTheInterface) {
    for (Held<KEL>& value : oneOfEachKind()) {
        KELInterface_RefCount_V1& counted = *value;
        counted.addRef();
        EXPECT_EQ(counted.getRefCount(), 1); // whatever the count is
        EXPECT_EQ(counted.release(), 1);
        EXPECT_EQ(value.detach()->release(), 0);
    }
}

TEST(HostValues, HaveDifferentIdentities) {
    const std::vector<Held<KEL>> values = oneOfEachKind();
    for (const Held<KEL>& value : values) {
        for (const Held<KEL>& other : values) {
            EXPECT_EQ(identityOf(*value) == identityOf(*other), value.get() == other.get());
        }
    }
}

TEST(HostValues, DeletingNullDoesNothing) {
    DeleteKEL(nullptr);
    DeleteKELException(nullptr);
    DeleteStringEnumeration(nullptr);
    DeleteKELInputStream(nullptr);
    DeleteKELOutputStream(nullptr);
}

TEST(HostValues, DeletingAValueThatAContainerHoldsLeavesItThere) {
    const auto array = hold(CreateKELArray());
    KEL_Int* value = CreateKELInt(7);
    array->addVar(value);
    DeleteKEL(value);
    EXPECT_EQ(array->getCount(), 1);
    EXPECT_EQ(value->getValue(), 7);
}

TEST(HostValues, TheKindsClassLeadsToKELAndBack) {
    const auto value = hold(CreateKELInt(7));
    KEL* base = value.get();
    EXPECT_EQ(dynamic_cast<KEL_Int*>(base), value.get());
    EXPECT_EQ(dynamic_cast<KEL_Double*>(base), nullptr);
    EXPECT_EQ(dynamic_cast<KEL_Array*>(base), nullptr);
}

TEST(HostValues, EveryClassAndInterfaceIsReachedByDynamicCast) {
    const auto values = oneOfEachKind();
    EXPECT_NE(dynamic_cast<KEL_Int*>(values[0].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_Boolean*>(values[1].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_Double*>(values[2].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_guid*>(values[3].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_MemBlock*>(values[4].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_String*>(values[5].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_Array*>(values[6].get()), nullptr);
    EXPECT_NE(dynamic_cast<KELInterface_Struct_V1*>(values[7].get()), nullptr);
    EXPECT_NE(dynamic_cast<KELInterface_Manager_V1*>(values[8].get()), nullptr);
}

TEST(HostValues, EveryKindIsObservable) {
    for (const Held<KEL>& value : oneOfEachKind()) {
        EXPECT_NE(dynamic_cast<KEL_Observable*>(value.get()), nullptr) << value->getType();
    }
}

TEST(HostValues, CopyThroughTheInterface) {
    for (const Held<KEL>& value : oneOfEachKind()) {
        const KELInterface_V1& original = *value;
        const Held<KEL> copy(original.copy());
        EXPECT_NE(copy.get(), value.get());
        EXPECT_EQ(copy->getType(), value->getType());
        EXPECT_TRUE(original.equalsValue(copy.get()));
        EXPECT_FALSE(original.equals(copy.get()));
    }
}

TEST(HostValues, CompareThroughTheInterface) {
    const auto value = hold(CreateKELInt(7));
    const auto same = hold(CreateKELInt(7));
    const KELInterface_V1& original = *value;
    EXPECT_TRUE(original.equals(value.get()));
    EXPECT_FALSE(original.equals(nullptr));
    EXPECT_TRUE(original.equals(same.get(), same.get()));
    EXPECT_FALSE(original.equals(same.get(), value.get()));
    EXPECT_TRUE(original.equals(nullptr, nullptr));
    EXPECT_FALSE(original.equals(nullptr, value.get()));
    EXPECT_TRUE(original.equalsValue(same.get()));
    EXPECT_FALSE(original.equalsValue(nullptr));
    EXPECT_EQ(original.getVersion(), 1);
}

TEST(HostValues, AssignThroughTheInterface) {
    const auto value = hold(CreateKELInt(7));
    KELInterface_V1& target = *value;
    target.assign(hold(CreateKELInt(8)).get());
    EXPECT_EQ(value->getValue(), 8);
    target.assignConverted(hold(CreateKELString("9x")).get(), false);
    EXPECT_EQ(value->getValue(), 9);
    target.assign(nullptr);
    target.assignConverted(nullptr, true);
    EXPECT_EQ(value->getValue(), 9);
}

TEST(HostValues, AssigningAnotherKindIsRefused) {
    const auto value = hold(CreateKELInt(7));
    const auto text = hold(CreateKELString("8"));
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { value->assign(text.get()); }),
              "Can't set the value when types are not equal!");
    EXPECT_EQ(value->getValue(), 7);
}

TEST(HostValues, KindCodesAreTheNumbersInFiles) {
    EXPECT_EQ(KELKind_Int, 1);
    EXPECT_EQ(KELKind_Boolean, 2);
    EXPECT_EQ(KELKind_Double, 3);
    EXPECT_EQ(KELKind_guid, 4);
    EXPECT_EQ(KELKind_MemBlock, 5);
    EXPECT_EQ(KELKind_String, 6);
    EXPECT_EQ(KELKind_Array, 7);
    EXPECT_EQ(KELKind_Struct, 8);
    EXPECT_EQ(KELKind_Manager, 9);
    EXPECT_EQ(KELKind_Selector, 10);
    EXPECT_EQ(KELKind_MultiSelector, 11);
    EXPECT_EQ(KELKind_IndexList, 12);
    EXPECT_EQ(KELKind_MetaKel, 50);
    EXPECT_EQ(KELKind_MetaKelDescriptor, 51);
    EXPECT_EQ(KELKind_MetaKelVarDescriptor, 52);
}

TEST(HostMemBlock, ReadsAndWritesThroughItsInterface) {
    const auto value = hold(CreateKELMemBlock(16, "0123456789ABCDEF"));
    KELInterface_MemBlock_V1& block = *value;
    char bytes[17] = {};
    block.write(10, "uvwxyz", 6);
    block.read(0, bytes, 16);
    EXPECT_STREQ(bytes, "0123456789uvwxyz");
    EXPECT_EQ(block.getSize(), 16);
}

TEST(HostMemBlock, FromNullIsZero) {
    const auto block = hold(CreateKELMemBlock(8, nullptr));
    std::string bytes(8, '?');
    block->read(0, bytes.data(), 8);
    EXPECT_EQ(bytes, std::string(8, '\0'));
}

TEST(HostMemBlock, RefusesWhatLiesPastItsEnd) {
    const auto block = hold(CreateKELMemBlock(16, nullptr));
    char bytes[32] = {};
    EXPECT_EQ(thrownMessage<KELMemBlockException>([&] { block->read(15, bytes, 2); }),
              "Cannot read past the end of the memory block.");
    EXPECT_EQ(thrownMessage<KELMemBlockException>([&] { block->write(11, bytes, 6); }),
              "Cannot write past the end of the memory block.");
    block->read(100, nullptr, 100);
}

TEST(HostMemBlock, OfNoBytesOrFewerCannotBeMadeOrRead) {
    const auto block = hold(CreateKELMemBlock(0, nullptr));
    char byte = 0;
    block->read(0, &byte, 0);
    EXPECT_EQ(thrownMessage<KELOutOfMemoryException>([] { CreateKELMemBlock(-1, nullptr); }),
              "Out of memory!");
}

} // namespace
