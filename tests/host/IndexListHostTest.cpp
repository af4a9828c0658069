// Keyed lists as a host sees them: every operation, through the public class.
#include "Host.h"

using namespace host;

namespace {

std::string textsOf(const KEL_Array& array) {
    std::string texts;
    for (int32_t i = 0; i < array.getCount(); ++i) {
        const char* text = array.getVar(i)->toString();
        texts.append(texts.empty() ? "" : " ").append(text == nullptr ? "-" : text);
    }
    return texts;
}

/// Keys and items of a list, with a bar between them.
std::string textsOf(const KEL_IndexList& list) {
    return textsOf(*list.getKeys()) + " | " + textsOf(*list.getItems());
}

/// A list of the pairs a=1 b=2.
class IndexListHost : public ::testing::Test {
protected:
    IndexListHost() {
        list->addPair(a.get(), one.get());
        list->addPair(b.get(), two.get());
    }

    template <class Action> std::string notFound(const Action& action) {
        return thrownMessage<KELNoSuchElementException>(action);
    }

    Held<KEL_String> a{CreateKELString("a")}, b{CreateKELString("b")}, otherA{CreateKELString("a")};
    Held<KEL_Int> one{CreateKELInt(1)}, two{CreateKELInt(2)}, three{CreateKELInt(3)};
    Held<KEL_IndexList> list{CreateKELIndexList()};
    const KEL_IndexList& constant = *list;
};

TEST_F(IndexListHost, IsAValueThatCanBeWatched) {
    EXPECT_EQ(list->getType(), KELKind_IndexList);
    EXPECT_NE(dynamic_cast<KEL_Observable*>(static_cast<KEL*>(list.get())), nullptr);
    EXPECT_NE(dynamic_cast<KELInterface_IndexList_V1*>(static_cast<KEL*>(list.get())), nullptr);
}

TEST_F(IndexListHost, EveryFactory) {
    const auto array = hold(CreateKELArray());
    array->addInt(int32_t{7});
    const auto structure = hold(CreateKELStruct());
    structure->putInt("x", int32_t{8});
    EXPECT_EQ(textsOf(*hold(CreateKELIndexList())), " | ");
    EXPECT_EQ(textsOf(*hold(CreateKELIndexList(array.get()))), "7 | 7");
    EXPECT_EQ(textsOf(*hold(CreateKELIndexList(array.get(), array.get()))), "7 | 7");
    EXPECT_EQ(textsOf(*hold(CreateKELIndexList(structure.get()))), "x | 8");
    EXPECT_EQ(CreateKELIndexList(array.get(), nullptr), nullptr);
}

TEST_F(IndexListHost, LookingUp) {
    EXPECT_EQ(list->getItem(a.get()), one.get());
    EXPECT_EQ(constant.getItem(a.get()), one.get());
    EXPECT_EQ(list->getKey(two.get()), b.get());
    EXPECT_EQ(constant.getKey(two.get()), b.get());
    EXPECT_TRUE(list->containsKey(a.get()));
    EXPECT_TRUE(list->containsItem(one.get()));
    EXPECT_EQ(list->indexOfKey(b.get()), 1);
    EXPECT_EQ(list->indexOfItem(two.get()), 1);
    EXPECT_EQ(list->getItemOfKeyValue(otherA.get()), one.get());
    EXPECT_EQ(constant.getItemOfKeyValue(otherA.get()), one.get());
    EXPECT_TRUE(list->containsKeyValue(otherA.get()));
    EXPECT_EQ(list->indexOfKeyValue(otherA.get()), 0);
    EXPECT_EQ(list->getItemOfKeyText("b"), two.get());
    EXPECT_EQ(list->getCount(), 2);
    EXPECT_EQ(list->getKeyAt(1), b.get());
    EXPECT_EQ(list->getItemAt(1), two.get());
    EXPECT_EQ(list->getKeys(), constant.getKeys());
    EXPECT_EQ(list->getItems(), constant.getItems());
}

TEST_F(IndexListHost, NotFoundHasThreeMessages) {
    EXPECT_EQ(notFound([&] { list->getItem(otherA.get()); }), "Key not found in list.");
    EXPECT_EQ(notFound([&] { list->removeKey(otherA.get()); }), "Key not found in list.");
    EXPECT_EQ(notFound([&] { list->removeItem(three.get()); }), "Item not found in list.");
    EXPECT_EQ(notFound([&] { list->removeKeyValue(three.get()); }), "Key value not found in list.");
    EXPECT_EQ(thrownMessage<KELArrayIndexOutOfBoundsException>([&] { list->getKeyAt(2); }),
              "Array index out of bounds.");
    EXPECT_EQ(thrownMessage<KELNoSuchTypeException>(
                  [&] { list->setKeyValue(otherA.get(), three.get()); }),
              "Can't set the value when types are not equal!");
}

TEST_F(IndexListHost, Removing) {
    list->removeKey(a.get());
    EXPECT_EQ(textsOf(*list), "b | 2");
    list->removeItem(two.get());
    list->addPair(a.get(), one.get());
    list->removeKeyValue(otherA.get());
    EXPECT_EQ(textsOf(*list), " | ");
    list->addPair(a.get(), one.get());
    list->addPair(b.get(), two.get());
    list->removePair(0);
    EXPECT_EQ(textsOf(*list), "b | 2");
    list->removeAllPairs();
    EXPECT_EQ(list->getCount(), 0);
}

TEST_F(IndexListHost, Replacing) {
    list->setItemOfKey(a.get(), three.get());
    list->setItemOfKeyValue(b.get(), one.get());
    EXPECT_EQ(textsOf(*list), "a b | 3 1");
    list->setItemAt(0, two.get());
    list->setKeyOfItem(one.get(), otherA.get());
    EXPECT_EQ(textsOf(*list), "a a | 2 1");
    list->swapPairs(0, 1);
    EXPECT_EQ(textsOf(*list), "a a | 1 2");
    list->setKeyValue(a.get(), b.get());
    EXPECT_EQ(textsOf(*list), "b b | 1 2");
}

TEST_F(IndexListHost, TypedFormsOfSetKeyValue) {
    const JHashCode guid(1, 2, 3, 4);
    const auto set = [&](const char* kind, auto&& operation) {
        list->removeAllPairs();
        const int32_t index = std::string(kind) == "Int" ? list->addKeyInt(int32_t{1}, one.get())
                              : std::string(kind) == "Double" ? list->addKeyDouble(1.5, one.get())
                              : std::string(kind) == "Boolean"
                                  ? list->addKeyBoolean(true, one.get())
                              : std::string(kind) == "guid" ? list->addKeyguid(guid, one.get())
                                                            : list->addKeyString("a", one.get());
        operation(list->getKeyAt(index));
        return std::string(list->getKeyAt(index)->toString());
    };
    EXPECT_EQ(set("String", [&](KEL* key) { list->setKeyString(key, "z"); }), "z");
    EXPECT_EQ(set("guid", [&](KEL* key) { list->setKeyguid(key, JHashCode()); }),
              "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(set("Double", [&](KEL* key) { list->setKeyDouble(key, 2.5F); }), "2.500000");
    EXPECT_EQ(set("Double", [&](KEL* key) { list->setKeyDouble(key, 3.5); }), "3.500000");
    EXPECT_EQ(set("Int", [&](KEL* key) { list->setKeyInt(key, 2L); }), "2");
    EXPECT_EQ(set("Int", [&](KEL* key) { list->setKeyInt(key, 3UL); }), "3");
    EXPECT_EQ(set("Int", [&](KEL* key) { list->setKeyInt(key, int32_t{4}); }), "4");
    EXPECT_EQ(set("Boolean", [&](KEL* key) { list->setKeyBoolean(key, false); }), "false");
}

TEST_F(IndexListHost, AddingKeysOfPlainTypes) {
    const JHashCode zero;
    list->removeAllPairs();
    list->addKeyString("s", one.get());
    list->addKeyguid(zero, one.get());
    list->addKeyDouble(0.5F, one.get());
    list->addKeyDouble(1.5, one.get());
    list->addKeyInt(2L, one.get());
    list->addKeyInt(3UL, one.get());
    list->addKeyInt(int32_t{4}, one.get());
    EXPECT_EQ(list->addKeyBoolean(true, one.get()), 7);
    EXPECT_EQ(textsOf(*list), "s 00000000-0000-0000-0000-000000000000 0.500000 1.500000 2 3 4 true"
                              " | 1 1 1 1 1 1 1 1");
}

TEST_F(IndexListHost, AddingItemsOfPlainTypes) {
    const JHashCode zero;
    list->removeAllPairs();
    list->addItemString(a.get(), "s");
    list->addItemguid(a.get(), zero);
    list->addItemDouble(a.get(), 0.5F);
    list->addItemDouble(a.get(), 1.5);
    list->addItemInt(a.get(), 2L);
    list->addItemInt(a.get(), 3UL);
    list->addItemInt(a.get(), int32_t{4});
    EXPECT_EQ(list->addItemBoolean(a.get(), true), 7);
    EXPECT_EQ(textsOf(*list), "a a a a a a a a | s 00000000-0000-0000-0000-000000000000 0.500000 "
                              "1.500000 2 3 4 true");
}

TEST_F(IndexListHost, AddingNamedItemsOfPlainTypes) {
    const JHashCode zero;
    list->removeAllPairs();
    list->addNamedString("k", "s");
    list->addNamedguid("k", zero);
    list->addNamedDouble("k", 0.5F);
    list->addNamedDouble("k", 1.5);
    list->addNamedInt("k", 2L);
    list->addNamedInt("k", 3UL);
    list->addNamedInt("k", int32_t{4});
    EXPECT_EQ(list->addNamedBoolean("k", true), 7);
    EXPECT_EQ(textsOf(*list), "k k k k k k k k | s 00000000-0000-0000-0000-000000000000 0.500000 "
                              "1.500000 2 3 4 true");
}

TEST_F(IndexListHost, AddingPairs) {
    const auto other = hold(CreateKELIndexList());
    EXPECT_EQ(list->addPair(otherA.get(), three.get()), 2);
    list->insertPair(otherA.get(), three.get(), 0);
    EXPECT_EQ(textsOf(*list), "a a b a | 3 1 2 3");
    EXPECT_EQ(other->addPairs(list.get()), 0);
    EXPECT_EQ(textsOf(*other), "a a b | 3 1 2"); // each key once
}

TEST_F(IndexListHost, AnObserverIsToldOnceOfEachChange) {
    Watcher watcher;
    list->addObserver(&watcher);
    list->addNamedInt("c", int32_t{3});
    list->removeKey(a.get());
    list->removeAllPairs();
    list->removeObserver(&watcher);
    EXPECT_EQ(watcher.told, std::vector<KEL*>(3, list.get()));
}

TEST_F(IndexListHost, GoesThroughTextAndBack) {
    const auto out = hold(CreateKELStringOutputStream());
    out->write(list.get());
    const std::string text = out->getString();
    EXPECT_EQ(text, "<\n\t/* keys: */ \n\t[\n\t\t\"a\"\n\t\t\"b\"\n\t]\n"
                    "\t/* values: */ \n\t[\n\t\t1\n\t\t2\n\t]\n>\n");
    const auto in =
        hold(CreateKELStringInputStream(text.c_str(), static_cast<int32_t>(text.size())));
    const auto back = hold(in->read());
    EXPECT_TRUE(back->equalsValue(list.get()));
    EXPECT_NE(dynamic_cast<KEL_IndexList*>(back.get()), nullptr);
}

TEST_F(IndexListHost, HasNoBinaryForm) {
    std::FILE* file = std::tmpfile();
    auto out = hold(CreateKELBinaryOutputStream(file));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { out->write(list.get()); }),
              "General KEL exception.");
    out.clear(); // writes to the file what it holds
    std::fclose(file);
}

} // namespace
