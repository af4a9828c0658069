// Keyed lists, selectors, checked structs and descriptors work at any depth. Values that contain
// themselves are copied, compared and taken apart.
#include "support/AllocationFailure.h"
#include "support/Kinds.h"
#include "support/SmallStack.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Watcher.h"
#include "values/ChildCursor.h"

#include <gtest/gtest.h>
#include <utility>

using namespace kel::test;

namespace {

constexpr int many = million / 4; // for cases that differ little from similar ones

using Wrap = KEL_Impl* (*)(KEL_Impl* inner);

/// Wraps a value the given number of times. Takes over the reference to it.
HeldValue nested(int levels, Wrap wrap) {
    KEL_Impl* value = new KEL_Int_Impl(7);
    for (int i = 0; i < levels; ++i) {
        KEL_Impl* inner = value;
        value = wrap(inner);
        inner->release();
    }
    return HeldValue(value);
}

KEL_Impl* asItem(KEL_Impl* inner) {
    auto* list = new KEL_IndexList_Impl();
    list->addKeyInt(int32_t{0}, inner);
    return list;
}
KEL_Impl* asKey(KEL_Impl* inner) {
    auto* list = new KEL_IndexList_Impl();
    list->addItemInt(inner, int32_t{0});
    return list;
}
KEL_Impl* asEntry(KEL_Impl* inner) {
    auto* manager = new KEL_Manager_Impl();
    manager->addKel(inner);
    return manager;
}
template <class Kind> KEL_Impl* asVariable(KEL_Impl* inner) {
    auto* made = new Kind();
    made->inner().addVar("x", inner);
    return made;
}

/// Wraps the value in one container. The kinds take turns from call to call.
KEL_Impl* inTurns(KEL_Impl* inner) {
    static constexpr Wrap wraps[] = {
        asItem, asVariable<MetaKel_Impl>,           asEntry,
        asKey,  asVariable<MetaKelDescriptor_Impl>, asVariable<MetaKelVarDescriptor_Impl>};
    static thread_local std::size_t turn = 0;
    return wraps[turn++ % std::size(wraps)](inner);
}

/// Builds, copies, compares and destroys a nesting in a thread with little stack.
void liveDeep(int levels, Wrap wrap) {
    runInSmallStack([=] {
        auto value = nested(levels, wrap);
        Held<KEL> copy(value->copy());
        EXPECT_TRUE(copy->equalsValue(value.get()));
        copy.clear();
        value.clear();
    });
}

TEST(KindsDepth, AMillionListsAsItemsOfOneAnother) {
    liveDeep(million, asItem);
}
TEST(KindsDepth, ListsAsKeysOfOneAnother) {
    liveDeep(many, asKey);
}
TEST(KindsDepth, Managers) {
    liveDeep(many, asEntry);
}
TEST(KindsDepth, AMillionCheckedStructs) {
    liveDeep(million, asVariable<MetaKel_Impl>);
}
TEST(KindsDepth, StructDescriptors) {
    liveDeep(many, asVariable<MetaKelDescriptor_Impl>);
}
TEST(KindsDepth, VariableDescriptors) {
    liveDeep(many, asVariable<MetaKelVarDescriptor_Impl>);
}
TEST(KindsDepth, AMillionOfAllKindsInTurns) {
    liveDeep(million, inTurns);
}

TEST(KindsDepth, AMillionSelectorsAreCopiedComparedAndDestroyed) {
    runInSmallStack([] {
        auto value = nested(million, [](KEL_Impl* inner) -> KEL_Impl* {
            const JPointer<KEL_IndexList_Impl> list(new KEL_IndexList_Impl());
            list->addPair(inner, inner);
            auto* selector = new KEL_Selector_Impl(list.get());
            selector->selectKey(inner);
            return selector;
        });
        const LifeProbe probe(*value);
        EXPECT_TRUE(value->equalsValue(Held<KEL>(value->copy()).get()));
        value.clear();
        EXPECT_FALSE(probe.isAlive());
    });
}

TEST(KindsDepth, AMillionMultiSelectorsAreCopiedComparedAndDestroyed) {
    runInSmallStack([] {
        auto value = nested(million, [](KEL_Impl* inner) -> KEL_Impl* {
            auto* selector = new KEL_MultiSelector_Impl(nullptr);
            selector->getList()->addPair(inner, inner);
            selector->selectKey(inner);
            return selector;
        });
        const LifeProbe probe(*value);
        EXPECT_TRUE(value->equalsValue(Held<KEL>(value->copy()).get()));
        value.clear();
        EXPECT_FALSE(probe.isAlive());
    });
}

/// Returns a text of the given number of levels, without indentation.
std::string nestedText(int levels, const std::string& open, const std::string& close) {
    std::string text;
    for (int i = 0; i < levels; ++i) {
        text += open;
    }
    text += "7";
    for (int i = 0; i < levels; ++i) {
        text += close;
    }
    return text;
}

/// Returns the number of containers on the way down, always by the last child or always by the
/// first.
int depthOf(const KEL_Impl& root, bool byLast) {
    const KEL_Impl* value = &root;
    int depth = 0;
    for (; value->isContainer(); ++depth) {
        kel::ChildCursor cursor(*value);
        while (cursor.next()) {
            value = cursor.value;
            if (!byLast) {
                break;
            }
        }
    }
    EXPECT_EQ(value->toInt(), 7);
    return depth;
}

/// Reads a deep text with little stack, checks the innermost value and destroys the values read.
int depthRead(int levels, const std::string& open, const std::string& close, bool byLast) {
    int depth = 0;
    runInSmallStack([&] {
        const auto value = read(nestedText(levels, open, close));
        depth = depthOf(*value, byLast);
    });
    return depth;
}

TEST(KindsDepth, AMillionListsAreRead) {
    EXPECT_EQ(depthRead(million, "<[0][", "]>", true), 2 * million); // list and array
    EXPECT_EQ(depthRead(many, "<[", "][0]>", false), 2 * many);
}

TEST(KindsDepth, AMillionCheckedStructsAreRead) {
    EXPECT_EQ(depthRead(million, "{ @type = 50\nx=", "}", true), million);
}

TEST(KindsDepth, DescriptorsAreRead) {
    EXPECT_EQ(depthRead(many, "{ @type = 52\nx=", "}\n\n", true), many);
}

TEST(KindsDepth, ADeepSyntaxErrorIsClearedAwayWithoutStack) {
    runInSmallStack([] {
        const std::string text = nestedText(many, "<[0][{ @type = 50\nx=", "?");
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(many + 1));
    });
}

TEST(KindsDepth, AFewThousandLevelsAreWrittenWithoutStack) {
    runInSmallStack([] { // the tabs of a million levels would take a thousand gigabytes
        const auto value = nested(4000, inTurns);
        const std::string text = textOf(value);
        EXPECT_EQ(rewritten(text), text);
    });
}

// ---- Values that contain themselves ------------------------------------------------------------

/// Limits the memory of a test. A walk that does not end runs out of memory instead of time.
class KindsCycles : public ::testing::Test {
protected:
    /// Copies and compares a value that contains itself, and takes both apart again.
    void liveInCycle(const HeldValue& value) {
        const TakeApart apart(value.get());
        const HeldValue copy(KEL_Impl::of(value->copy()));
        const TakeApart apartToo(copy.get());
        EXPECT_TRUE(copy->equalsValue(value.get()));
        EXPECT_TRUE(value->equalsValue(copy.get()));
        EXPECT_NE(copy.get(), value.get());
        EXPECT_EQ(valuesOf(*copy).size(), valuesOf(*value).size());
    }

private:
    AllocationBudget budget_{16 << 20};
};

TEST_F(KindsCycles, AListThatIsItsOwnItemOrKey) {
    for (const bool asKeyToo : {false, true}) {
        auto list = listOf(arrayOf(intOf(1)), arrayOf(intOf(2)));
        asList(list).addPair(asKeyToo ? list.get() : intOf(1).get(), list.get());
        const LifeProbe probe(*list);
        liveInCycle(list);
        list.clear();
        EXPECT_FALSE(probe.isAlive());
    }
}

TEST_F(KindsCycles, AListWhoseItemsHoldThemselves) {
    const auto keys = arrayOf(intOf(1)), items = arrayOf();
    asArray(items).addVar(items.get());
    liveInCycle(listOf(keys, items));
}

TEST_F(KindsCycles, ValuesBuiltOnStructs) {
    for (auto&& made : {metaOf(), structDescriptorOf(), descriptorOf()}) {
        auto value = HeldValue(made.get());
        value->addRef();
        dynamic_cast<kel::StructHolder&>(*value).inner().addVar("self", value.get());
        liveInCycle(value);
        EXPECT_EQ(asStruct(value).getCount(), 0);
    }
}

TEST_F(KindsCycles, ADescriptorThatHoldsItsInnerStruct) {
    const auto descriptor = descriptorOf("type", intOf(1));
    asStruct(descriptor).addVar("inner", asDescriptor(descriptor).getStruct());
    const TakeApart apart(descriptor.get());
    const HeldValue copy(KEL_Impl::of(descriptor->copy()));
    const TakeApart apartToo(copy.get());
    EXPECT_TRUE(copy->equalsValue(descriptor.get()));
}

TEST_F(KindsCycles, ACheckedStructThatItsOwnDescriptorHoldsAsADefault) {
    const auto rules = descriptorOf("type", intOf(50));
    const auto meta = metaOf("@desc", structDescriptorOf("x", rules));
    asStruct(rules).addVar("default", meta.get());
    EXPECT_EQ(asMeta(meta).getVar("x", true), meta.get());
    liveInCycle(meta);
}

TEST_F(KindsCycles, ThroughEveryKindOfContainer) {
    const auto list = listOf(arrayOf(), arrayOf()), manager = managerOf();
    const auto meta = metaOf("list", list);
    asList(list).addPair(intOf(1).get(), structOf("m", manager).get());
    asManager(manager).addKel(arrayOf(meta).get());
    const TakeApart apart(meta.get());
    const HeldValue copy(KEL_Impl::of(meta->copy())); // the manager's elements are shared
    EXPECT_TRUE(copy->equalsValue(meta.get()));
}

TEST_F(KindsCycles, AssigningAValueToOneThatItContains) {
    const auto inner = metaOf("x", intOf(1)), outer = metaOf("inner", inner);
    inner->assign(outer.get());
    const TakeApart apart(inner.get());
    EXPECT_TRUE(asStruct(inner).containsVar("inner"));
    const auto list = listOf(arrayOf(), arrayOf()), around = listOf(arrayOf(list), arrayOf(list));
    list->assign(around.get());
    const TakeApart apartToo(list.get());
    EXPECT_EQ(asList(list).getCount(), 1);
}

} // namespace
