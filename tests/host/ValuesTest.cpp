// Tests factories, classes and codes on the host's side of the boundary.
#include "Host.h"

namespace {

using host::Held;
using host::hold;
using host::thrownMessage;

/// Returns one value of each kind that a factory makes.
std::vector<Held<KEL>> oneOfEachKind() {
    std::vector<Held<KEL>> values;
    for (KEL* value : std::initializer_list<KEL*>{
             CreateKELInt(1), CreateKELBoolean(true), CreateKELDouble(1.5), CreateKELGuid(),
             CreateKELMemBlock(4, "abc"), CreateKELString("text"), CreateKELArray(),
             CreateKELStruct(), CreateKELManager(), CreateKELSelector(nullptr),
             CreateKELMultiSelector(nullptr), CreateKELIndexList(), CreateMetaKel(nullptr),
             CreateMetaKelDescriptor(), CreateMetaKelVarDescriptor()}) {
        values.emplace_back(value);
    }
    return values;
}

JHashCode identityOf(const KELInterface_RefCount_V1& value) {
    JHashCode identity;
    return value.getHashCode(identity);
}

TEST(HostValues, AnswerTheirKind) {
    std::vector<int32_t> kinds;
    for (const Held<KEL>& value : oneOfEachKind()) {
        const KELInterface_RefCount_V1& counted = *value;
        kinds.push_back(counted.getType());
    }
    EXPECT_EQ(kinds, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 50, 51, 52}));
}

TEST(HostValues, ScalarsAreMadeWithTheirValueAndOneReference) {
    const KELGuid given = {0x3F2504E0U, 0x4F89, 0x11D3, {0x9A, 0x0C, 3, 5, 0xE8, 0x2C, 0x33, 1}};
    JHashCode guid;
    EXPECT_EQ(hold(CreateKELInt(-7))->getValue(), -7);
    EXPECT_TRUE(hold(CreateKELBoolean(true))->getValue());
    EXPECT_EQ(hold(CreateKELDouble(2.5))->getValue(), 2.5);
    EXPECT_STREQ(hold(CreateKELString("abc"))->getValue(), "abc");
    EXPECT_EQ(hold(CreateKELGuid(given))->getValue(guid), JHashCode(given));
    EXPECT_EQ(host::referencesOf(*hold(CreateKELInt(-7))), 1);
}

TEST(HostValues, AStringFromNullIsEmptyAndAGuidFromNothingIsZero) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_STREQ(hold(CreateKELString(nullptr))->getValue(), "");
    EXPECT_TRUE(hold(CreateKELGuid())->getValue(guid).isZero());
}

TEST(HostValues, EveryFactoryOfAnIndexList) {
    const auto array = hold(CreateKELArray());
    const auto keys = hold(CreateKELArray());
    const auto structure = hold(CreateKELStruct());
    array->addInt(int32_t{7});
    keys->addString("k");
    structure->putInt("x", int32_t{8});
    const auto pairsOf = [](const Held<KEL_IndexList>& list) {
        std::string pairs;
        for (int32_t i = 0; i < list->getCount(); ++i) {
            pairs.append(list->getKeyAt(i)->toString()).append("=");
            pairs.append(list->getItemAt(i)->toString());
        }
        return pairs;
    };
    EXPECT_EQ(pairsOf(hold(CreateKELIndexList())), "");
    EXPECT_EQ(pairsOf(hold(CreateKELIndexList(array.get()))), "7=7");
    EXPECT_EQ(pairsOf(hold(CreateKELIndexList(keys.get(), array.get()))), "k=7");
    EXPECT_EQ(pairsOf(hold(CreateKELIndexList(structure.get()))), "x=8");
    EXPECT_EQ(CreateKELIndexList(array.get(), nullptr), nullptr);
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
    EXPECT_NE(dynamic_cast<KEL_Selector*>(values[9].get()), nullptr);
    EXPECT_NE(dynamic_cast<KEL_MultiSelector*>(values[10].get()), nullptr);
    EXPECT_NE(dynamic_cast<KELInterface_IndexList_V1*>(values[11].get()), nullptr);
    EXPECT_NE(dynamic_cast<MetaKelInterface_V1*>(values[12].get()), nullptr);
    EXPECT_NE(dynamic_cast<MetaKelDescriptorInterface_V1*>(values[13].get()), nullptr);
    EXPECT_NE(dynamic_cast<MetaKelVarDescriptorInterface_V1*>(values[14].get()), nullptr);
    for (std::size_t i = 12; i < 15; ++i) {
        EXPECT_NE(dynamic_cast<KEL_Struct*>(values[i].get()), nullptr);
    }
}

TEST(HostValues, EveryInterfaceOfTheThreeDescribingKindsIsAStruct) {
    const auto rules = hold(CreateMetaKelVarDescriptor());
    const auto descriptor = hold(CreateMetaKelDescriptor());
    const auto meta = hold(CreateMetaKel(descriptor.get()));
    MetaKelVarDescriptorInterface_V1* property = rules.get();
    MetaKelDescriptorInterface_V1* description = descriptor.get();
    MetaKelInterface_V1* checked = meta.get();
    for (KEL_Struct* variables :
         std::initializer_list<KEL_Struct*>{property, description, checked}) {
        variables->putInt("x", int32_t{5});
    }
    EXPECT_EQ(property->getInt("x") + description->getInt("x") + checked->getInt("x"), 15);
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

TEST(HostMemBlock, OfNoBytesOrFewerCannotBeMadeOrRead) {
    const auto block = hold(CreateKELMemBlock(0, nullptr));
    char byte = 0;
    block->read(0, &byte, 0);
    EXPECT_EQ(thrownMessage<KELOutOfMemoryException>([] { CreateKELMemBlock(-1, nullptr); }),
              "Out of memory!");
}

} // namespace
