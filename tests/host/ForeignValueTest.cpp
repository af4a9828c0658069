// Values that the library did not make are ignored where a value would be stored or taken over.
#include "ForeignValue.h"
#include "Host.h"

namespace {

using host::hold;
using host::Watcher;

class HostForeignValue : public ::testing::Test {
protected:
    host::ForeignValue foreign;
    Watcher watcher;
};

TEST_F(HostForeignValue, AnArrayIgnoresIt) {
    const auto array = hold(CreateKELArray());
    array->addInt(7);
    host::watch(*array, watcher);
    EXPECT_EQ(array->addVar(&foreign), -1);
    array->insertVar(&foreign, 0);
    array->setVar(&foreign, 0);
    array->setVarValue(0, &foreign);
    EXPECT_EQ(array->getCount(), 1);
    EXPECT_EQ(array->getInt(0), 7);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, AnArrayDoesNotFindIt) {
    const auto array = hold(CreateKELArray());
    array->addInt(1);
    EXPECT_FALSE(array->containsVar(&foreign));
    EXPECT_EQ(array->indexOfVar(&foreign), -1);
}

TEST_F(HostForeignValue, AManagerIgnoresIt) {
    const auto manager = hold(CreateKELManager());
    host::watch(*manager, watcher);
    manager->addKel(&foreign);
    EXPECT_EQ(manager->size(), 0);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, AStructConvertsNothingFromIt) {
    const auto structure = hold(CreateKELStruct());
    structure->putInt("x", 7);
    structure->setVarValue("x", &foreign);
    EXPECT_EQ(structure->getInt("x"), 7);
}

TEST_F(HostForeignValue, AValueNeitherEqualsNorTakesItOver) {
    const auto value = hold(CreateKELInt(7));
    host::watch(*value, watcher);
    value->assign(&foreign);
    value->assignConverted(&foreign, true);
    EXPECT_EQ(value->getValue(), 7);
    EXPECT_FALSE(value->equals(&foreign));
    EXPECT_FALSE(value->equalsValue(&foreign));
    EXPECT_EQ(watcher.calls(), 0);
}

} // namespace
