// Structs whose variables are changed by observers while an operation has yet to store some, with
// no memory left.
#include "meta/MetaKel_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Watcher.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

using kel::test::FailingAllocation;
using kel::test::Held;
using kel::test::make;
using kel::test::Watcher;

constexpr const char* longName = "a name that does not fit into its entry";

Held<KEL_Struct_Impl> numberedStruct(int count) {
    Held<KEL_Struct_Impl> made = make<KEL_Struct_Impl>();
    for (int i = 0; i < count; ++i) {
        made->putInt(std::to_string(100000 + i).c_str(), i);
    }
    return made;
}

class StructRoom : public ::testing::TestWithParam<int> {
protected:
    /// Runs the change when the struct first notifies, and takes all memory away after the change.
    void changeAtFirst(const std::function<void()>& change) {
        changed->addObserver(&watcher);
        atFirst = change;
    }

    Held<KEL_Struct_Impl> changed = numberedStruct(GetParam());
    const Held<KEL_Int_Impl> value = make<KEL_Int_Impl>(7);
    std::function<void()> atFirst;
    std::optional<FailingAllocation> nothingLeft;
    Watcher watcher{[this] {
        if (const auto change = std::exchange(atFirst, nullptr)) {
            change();
            watcher.told.reserve(10000); // for the notifications that are still to come
            nothingLeft.emplace(0, true);
        }
    }};

    void fill(int count) {
        for (int i = 0; i < count; ++i) {
            changed->putInt(("filled" + std::to_string(i)).c_str(), i);
        }
    }
};

TEST_P(StructRoom, AReplacedVariableIsStored) {
    changed->putInt(longName, 1);
    changeAtFirst([this] { fill(1000); });
    changed->addVar(longName, value.get());
    nothingLeft.reset();
    EXPECT_EQ(changed->getInt(longName), 7);
    EXPECT_EQ(changed->getCount(), GetParam() + 1001);
}

TEST_P(StructRoom, AReplacedVariableIsStoredAfterAllOthersAreRemoved) {
    changed->putInt(longName, 1);
    changeAtFirst([this] { changed->removeAllVars(); });
    changed->addVar(longName, value.get());
    nothingLeft.reset();
    EXPECT_EQ(changed->getInt(longName), 7);
    EXPECT_EQ(changed->getCount(), 1);
}

TEST_P(StructRoom, AReplacedVariableIsStoredAmongContentsTakenOver) {
    const Held<KEL_Struct_Impl> source = numberedStruct(GetParam());
    changed->putInt(longName, 1);
    changeAtFirst([&] { changed->assign(source.get()); });
    changed->addVar(longName, value.get());
    nothingLeft.reset();
    EXPECT_EQ(changed->getInt(longName), 7);
    EXPECT_EQ(changed->getCount(), GetParam() + 1);
}

TEST_P(StructRoom, AddedVariablesAreStored) {
    const Held<KEL_Struct_Impl> source = make<KEL_Struct_Impl>();
    for (int i = 0; i < 300; ++i) {
        source->putInt(("added" + std::to_string(i)).c_str(), i);
    }
    changeAtFirst([this] {
        changed->removeAllVars();
        fill(500);
    });
    changed->addVars(source.get());
    nothingLeft.reset();
    EXPECT_EQ(changed->getCount(), 799); // the first one was removed
    EXPECT_EQ(changed->getInt("added299"), 299);
}

TEST_P(StructRoom, ACheckedStructStoresToo) {
    const Held<MetaKel_Impl> checked = make<MetaKel_Impl>();
    checked->addVar("v", value.get());
    const Held<MetaKel_Impl> source = make<MetaKel_Impl>();
    source->inner().addVars(changed.get());
    const Held<KEL_Int_Impl> other = make<KEL_Int_Impl>(8);
    changed.clear();
    atFirst = [&] { checked->assign(source.get()); };
    checked->inner().addObserver(&watcher);
    checked->setVar("v", other.get());
    nothingLeft.reset();
    EXPECT_EQ(checked->getInt("v"), 8);
    EXPECT_EQ(checked->getCount(), GetParam() + 1);
    checked->inner().removeObserver(&watcher);
}

INSTANTIATE_TEST_SUITE_P(Sizes, StructRoom, ::testing::Values(0, 3, 127, 128, 1000));

} // namespace
