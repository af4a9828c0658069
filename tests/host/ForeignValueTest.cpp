// Values that the library did not make are ignored where a value would be stored or taken over.
#include "ForeignIndexList.h"
#include "ForeignRules.h"
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

TEST_F(HostForeignValue, AStructKeepsTheVariableThatItWouldReplace) {
    const auto structure = hold(CreateKELStruct());
    structure->putInt("x", 7);
    host::watch(*structure, watcher);
    structure->addVar("x", &foreign);
    EXPECT_EQ(structure->getInt("x"), 7);
    structure->setVar("x", &foreign);
    EXPECT_EQ(structure->getInt("x"), 7);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, AStructStoresNoNameForIt) {
    const auto structure = hold(CreateKELStruct());
    structure->addVar("null", nullptr);
    host::watch(*structure, watcher);
    structure->addVar("x", &foreign);
    structure->setVarValue("null", &foreign);
    EXPECT_FALSE(structure->containsVar("x"));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, ACheckedStructIgnoresIt) {
    const auto meta = hold(CreateMetaKel(nullptr));
    const auto zero = hold(CreateKELInt(0));
    meta->createVarWithDefault("x", zero.get(), zero.get());
    meta->createVarWithDefault("y", nullptr, zero.get());
    host::watch(*meta, watcher);
    meta->addVar("y", &foreign);
    meta->setVar("x", &foreign);
    EXPECT_FALSE(meta->containsVar("y"));
    EXPECT_EQ(meta->getVar("x", false), zero.get());
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, ADescriptorIgnoresIt) {
    const auto rules = hold(CreateMetaKelVarDescriptor());
    const auto two = hold(CreateKELInt(2));
    rules->putInt("min", int32_t{1});
    rules->putInt("max", int32_t{3});
    rules->putInt("default", int32_t{2});
    host::watch(*rules, watcher);
    rules->setVar("min", &foreign);
    rules->setDefault(&foreign);
    rules->setRange(&foreign, two.get());
    rules->setRange(two.get(), &foreign);
    EXPECT_EQ(rules->getInt("min"), 1);
    EXPECT_EQ(rules->getInt("max"), 3);
    EXPECT_EQ(rules->getInt("default"), 2);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, AnIndexListIgnoresIt) {
    const auto list = hold(CreateKELIndexList());
    const auto key = hold(CreateKELString("a"));
    list->addItemInt(key.get(), int32_t{1});
    host::watch(*list, watcher);
    EXPECT_EQ(list->addPair(key.get(), &foreign), -1);
    EXPECT_EQ(list->addPair(&foreign, key.get()), -1);
    list->insertPair(&foreign, key.get(), 0);
    list->insertPair(key.get(), &foreign, 0);
    EXPECT_EQ(list->getCount(), 1);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, AnIndexListReplacesNothingByIt) {
    const auto list = hold(CreateKELIndexList());
    const auto key = hold(CreateKELString("a"));
    const auto number = hold(CreateKELInt(5));
    list->addItemInt(key.get(), int32_t{7});
    list->addItemInt(number.get(), int32_t{8});
    host::watch(*list, watcher);
    list->setItemAt(0, &foreign);
    list->setItemOfKey(key.get(), &foreign);
    list->setItemOfKeyValue(key.get(), &foreign);
    list->setKeyOfItem(list->getItemAt(0), &foreign);
    list->setKeyValue(number.get(), &foreign); // of the same kind
    EXPECT_EQ(number->getValue(), 5);
    EXPECT_EQ(list->getKeyAt(0), key.get());
    EXPECT_EQ(list->getItemAt(0)->toInt(), 7);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, AnIndexListDoesNotFindIt) {
    const auto list = hold(CreateKELIndexList());
    list->addNamedInt("a", int32_t{1});
    EXPECT_FALSE(list->containsKey(&foreign));
    EXPECT_FALSE(list->containsItem(&foreign));
    EXPECT_EQ(host::thrownMessage<KELNoSuchElementException>([&] { list->removeKey(&foreign); }),
              "Key not found in list.");
}

TEST_F(HostForeignValue, ASelectorSelectsNothingByIt) {
    const auto one = hold(CreateKELSelector(nullptr));
    const auto many = hold(CreateKELMultiSelector(nullptr));
    one->getList()->addNamedInt("a", int32_t{1});
    one->selectKey(one->getList()->getKeyAt(0));
    host::watch(*one, watcher);
    host::watch(*many, watcher);
    EXPECT_FALSE(one->selectKey(&foreign));
    EXPECT_FALSE(one->selectItem(&foreign));
    EXPECT_FALSE(one->isSelectedKey(&foreign));
    EXPECT_FALSE(many->selectKey(&foreign));
    EXPECT_FALSE(many->isKeySelected(&foreign));
    EXPECT_EQ(one->getSelectedKey(), one->getList()->getKeyAt(0));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_F(HostForeignValue, ATextStreamDoesNotWriteIt) {
    const auto stream = hold(CreateKELStringOutputStream());
    EXPECT_EQ(host::thrownMessage<KELIOException>([&] { stream->write(&foreign); }),
              "General KEL exception.");
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

// ---- Containers that the library did not make --------------------------------------------------

class HostForeignContainer : public ::testing::Test {
protected:
    host::Held<KEL_Int> seven{CreateKELInt(7)};
    host::ForeignArray array{seven.get()};
    host::ForeignStruct structure{seven.get()};
    host::ForeignIndexList list{seven.get(), seven.get()};
    host::ForeignDescriptor descriptor{seven.get()};
};

TEST_F(HostForeignContainer, AddVarsTakesTheLibrarysValuesOutOfAnArray) {
    const auto target = hold(CreateKELArray());
    EXPECT_EQ(target->addVars(&array), 0);
    EXPECT_EQ(target->getCount(), 1);
    EXPECT_EQ(target->getVar(0), seven.get());
    EXPECT_EQ(array.references, 1);
}

TEST_F(HostForeignContainer, AddVarsTakesTheLibrarysValuesOutOfAStruct) {
    const auto target = hold(CreateKELStruct());
    EXPECT_EQ(target->addVars(&structure), 0);
    EXPECT_EQ(target->getCount(), 2);
    EXPECT_EQ(std::as_const(*target).getVar("b"), seven.get());
    EXPECT_EQ(structure.references, 1);
    EXPECT_EQ(structure.names.references, 0);
}

TEST_F(HostForeignContainer, NoIndexListIsMadeOfIt) {
    const auto own = hold(CreateKELArray());
    EXPECT_EQ(CreateKELIndexList(static_cast<KEL_Array*>(&array)), nullptr);
    EXPECT_EQ(CreateKELIndexList(&array, own.get()), nullptr);
    EXPECT_EQ(CreateKELIndexList(own.get(), &array), nullptr);
    EXPECT_EQ(CreateKELIndexList(static_cast<KEL_Struct*>(&structure)), nullptr);
}

TEST_F(HostForeignContainer, NoCheckedStructIsMadeOfIt) {
    const auto meta = hold(CreateMetaKel(nullptr));
    meta->setDescriptor(&descriptor);
    EXPECT_EQ(meta->getDescriptor(), nullptr);
    EXPECT_EQ(CreateMetaKel(&descriptor), nullptr);
}

TEST_F(HostForeignContainer, ACheckedStructCreatesNoVariableWithItsRules) {
    host::ForeignRules rules(seven.get());
    const auto meta = hold(CreateMetaKel(nullptr));
    meta->createVar("x", seven.get(), &rules);
    EXPECT_EQ(meta->getCount(), 0);
    EXPECT_EQ(meta->getDescriptor(), nullptr);
}

TEST_F(HostForeignContainer, NoSelectorIsMadeOverIt) {
    EXPECT_EQ(CreateKELSelector(&list), nullptr);
    EXPECT_EQ(CreateKELMultiSelector(&list), nullptr);
}

TEST_F(HostForeignContainer, ASelectorKeepsItsListInstead) {
    const auto one = hold(CreateKELSelector(nullptr));
    const auto many = hold(CreateKELMultiSelector(nullptr));
    KEL_IndexList* ofOne = one->getList();
    KEL_IndexList* ofMany = many->getList();
    one->setList(&list);
    many->setList(&list);
    EXPECT_EQ(one->getList(), ofOne);
    EXPECT_EQ(many->getList(), ofMany);
}

TEST_F(HostForeignContainer, AddPairsTakesTheLibrarysValuesOutOfAList) {
    const auto target = hold(CreateKELIndexList());
    EXPECT_EQ(target->addPairs(&list), 0);
    EXPECT_EQ(target->getCount(), 1);
    EXPECT_EQ(target->getItem(seven.get()), seven.get());
    EXPECT_EQ(list.references, 1);
}

TEST_F(HostForeignContainer, AddAllTakesEachNameOnce) {
    struct Names : host::ForeignNames {
        const char* nextElement() override {
            const char* name = ForeignNames::nextElement();
            return name == std::string("a") ? "b" : ++calls_ == 1 ? nullptr : name;
        }
        int32_t getCount() const override { return 3; }
        bool hasMoreElements() const override { return calls_ < 3; }
        int calls_ = 0;
    } names;
    const auto own = hold(CreateKELStruct());
    own->putInt("c", 1);
    const host::Held<StringEnumeration> target(own->getVarNames());
    target->addAll(&names);
    EXPECT_EQ(target->getCount(), 2);
    EXPECT_TRUE(target->contains("b"));
}

TEST_F(HostForeignContainer, AVariableWithoutANameIsNotTaken) {
    struct Nameless : host::ForeignNames {
        const char* nextElement() override {
            ForeignNames::nextElement();
            return "";
        }
    };
    struct Variables : host::ForeignStruct {
        using ForeignStructOf::ForeignStructOf;
        StringEnumeration* getVarNames() const override {
            nameless.references = 1;
            return &nameless;
        }
        mutable Nameless nameless;
    } variables(seven.get());
    const auto target = hold(CreateKELStruct());
    EXPECT_EQ(target->addVars(&variables), 0);
    EXPECT_EQ(target->getCount(), 0);
}

TEST_F(HostForeignContainer, ItsForeignValuesAreNotTaken) {
    host::ForeignValue foreign;
    host::ForeignArray values(&foreign);
    const auto elements = hold(CreateKELArray());
    elements->addVars(&values);
    EXPECT_EQ(elements->getCount(), 0);
    host::ForeignStruct variables(&foreign);
    const auto object = hold(CreateKELStruct());
    object->addVars(&variables);
    EXPECT_EQ(object->getCount(), 0);
    host::ForeignIndexList keys(&foreign, seven.get());
    host::ForeignIndexList items(seven.get(), &foreign);
    const auto pairs = hold(CreateKELIndexList());
    pairs->addPairs(&keys);
    pairs->addPairs(&items);
    EXPECT_EQ(pairs->getCount(), 0);
}

TEST_F(HostForeignValue, WithTheCodeOfAStringItIsNotConverted) {
    host::Foreign<KEL, KELKind_String> text;
    const auto structure = hold(CreateKELStruct());
    structure->putString("x", "a");
    structure->setVarValue("x", &text);
    const auto rules = hold(CreateMetaKelVarDescriptor());
    rules->setPreadorn(&text);
    EXPECT_EQ(host::Held<KEL_String>(structure->getString("x"))->toString(), std::string("a"));
}

// ---- Observers that change the target ----------------------------------------------------------

TEST_F(HostForeignContainer, AddVarsPassesOverANameThatAnObserverHasAdded) {
    const auto source = hold(CreateKELStruct());
    source->putInt("a", 1);
    source->putInt("b", 2);
    const auto target = hold(CreateKELStruct());
    Watcher watcher;
    host::watch(*target, watcher);
    watcher.then = [&] {
        watcher.then = nullptr;
        target->putInt("b", 3);
    };
    target->addVars(source.get());
    EXPECT_EQ(target->getInt("b"), 3);
    EXPECT_EQ(target->getInt("a"), 1);
}

TEST_F(HostForeignContainer, AddPairsPassesOverAKeyThatAnObserverHasAdded) {
    const auto first = hold(CreateKELInt(1));
    const auto second = hold(CreateKELInt(2));
    const auto source = hold(CreateKELIndexList());
    source->addItemInt(first.get(), int32_t{1});
    source->addItemInt(second.get(), int32_t{2});
    const auto target = hold(CreateKELIndexList());
    Watcher watcher;
    host::watch(*target, watcher);
    watcher.then = [&] {
        watcher.then = nullptr;
        target->addItemInt(second.get(), int32_t{3});
    };
    target->addPairs(source.get());
    EXPECT_EQ(target->getCount(), 2);
    EXPECT_EQ(target->getItem(second.get())->toInt(), 3);
}

} // namespace
