// What holds for a value of every kind: counting, identity, copying, assigning, comparing.
#include "meta/KELFactory.h"
#include "meta/KEL_Manager_Impl.h"
#include "support/Held.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Boolean_Impl.h"
#include "values/KEL_Double_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_MemBlock_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"
#include "values/KEL_guid_Impl.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::thrownMessage;
using kel::test::Watcher;
using Value = Held<KEL_Impl>;

const std::string differentTypes = "Can't set the value when types are not equal!";

/// One value of the kind with contents of its own.
Value sampleOf(int32_t kind) {
    Value value(kel::createValue(kind, nullptr));
    switch (kind) {
    case KELKind_Int:
        return Value(new KEL_Int_Impl(7));
    case KELKind_Boolean:
        return Value(new KEL_Boolean_Impl(true));
    case KELKind_Double:
        return Value(new KEL_Double_Impl(2.5));
    case KELKind_guid:
        return Value(new KEL_guid_Impl(JHashCode(1, 2, 3, 4)));
    case KELKind_MemBlock:
        return Value(new KEL_MemBlock_Impl(3, "abc"));
    case KELKind_String:
        return Value(new KEL_String_Impl("text"));
    case KELKind_Array:
        dynamic_cast<KEL_Array&>(*value).addInt(7);
        return value;
    case KELKind_Struct:
        dynamic_cast<KEL_Struct&>(*value).putInt("x", 7);
        return value;
    default:
        dynamic_cast<KEL_Manager&>(*value).addKel(make<KEL_Int_Impl>(7).get());
        return value;
    }
}

/// The values' own comparison of identities, as a host calls it.
bool areSame(const KEL& value, const KEL* other) {
    return value.equals(other);
}

/// Every test below runs for each kind.
class EveryKind : public ::testing::TestWithParam<int32_t> {
protected:
    Value value = sampleOf(GetParam());
};

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, ::testing::Range<int32_t>(1, 10));

TEST_P(EveryKind, AnswersItsKind) {
    EXPECT_EQ(value->getType(), GetParam());
}

TEST_P(EveryKind, IsStoredInVersion1) {
    EXPECT_EQ(value->getVersion(), 1);
}

TEST_P(EveryKind, CountsReferencesButAnswersOne) {
    value->addRef();
    EXPECT_EQ(value->getRefCount(), 1);
    EXPECT_EQ(static_cast<JObject&>(*value).getRefCount(), 1);
    EXPECT_EQ(value->release(), 1);
}

TEST_P(EveryKind, IsDestroyedByTheLastRelease) {
    const kel::test::LifeProbe probe(*value);
    value->addRef();
    EXPECT_EQ(value->release(), 1);
    EXPECT_TRUE(probe.isAlive());
    EXPECT_EQ(value.detach()->release(), 0);
    EXPECT_FALSE(probe.isAlive());
}

TEST_P(EveryKind, HasAnIdentityOfItsOwn) {
    JHashCode mine;
    JHashCode theirs;
    EXPECT_EQ(&value->getHashCode(mine), &mine);
    EXPECT_NE(mine, sampleOf(GetParam())->getHashCode(theirs));
    EXPECT_EQ(static_cast<JObject&>(*value).getHashCode(theirs), mine);
}

TEST_P(EveryKind, KeepsAGivenIdentity) {
    const JHashCode given(1, 2, 3, 4);
    const Value made(kel::createValue(GetParam(), &given));
    JHashCode identity;
    EXPECT_EQ(made->getHashCode(identity), given);
}

TEST_P(EveryKind, EqualsIsIdentity) {
    const Value same = sampleOf(GetParam());
    EXPECT_TRUE(areSame(*value, value.get()));
    EXPECT_FALSE(areSame(*value, same.get()));
    EXPECT_FALSE(areSame(*value, nullptr));
}

TEST_P(EveryKind, ComparesTwoValuesByIdentity) {
    const Value same = sampleOf(GetParam());
    EXPECT_TRUE(value->equals(same.get(), same.get()));
    EXPECT_FALSE(value->equals(value.get(), same.get()));
    EXPECT_FALSE(value->equals(nullptr, same.get()));
    EXPECT_FALSE(value->equals(same.get(), nullptr));
    EXPECT_TRUE(value->equals(nullptr, nullptr));
}

TEST_P(EveryKind, TwoValuesOfOneIdentityAreEqual) {
    const JHashCode given(1, 2, 3, 4);
    const Value first(kel::createValue(GetParam(), &given));
    const Value second(kel::createValue(KELKind_Int, &given));
    EXPECT_TRUE(areSame(*first, second.get()));
}

TEST_P(EveryKind, EqualsAValueOfTheSameContents) {
    EXPECT_TRUE(value->equalsValue(sampleOf(GetParam()).get()));
    EXPECT_TRUE(value->equalsValue(value.get()));
    EXPECT_FALSE(value->equalsValue(nullptr));
}

TEST_P(EveryKind, DoesNotEqualAnEmptyValueOfItsKind) {
    const Value empty(kel::createValue(GetParam(), nullptr));
    EXPECT_FALSE(value->equalsValue(empty.get()));
    EXPECT_FALSE(empty->equalsValue(value.get()));
}

TEST_P(EveryKind, EqualsNoOtherKind) {
    for (int32_t kind = 1; kind < 10; ++kind) {
        EXPECT_EQ(value->equalsValue(sampleOf(kind).get()), kind == GetParam()) << kind;
    }
}

TEST_P(EveryKind, CopiesToANewValueOfItsKindAndContents) {
    const Held<KEL> copy(value->copy());
    JHashCode mine;
    JHashCode theirs;
    EXPECT_NE(copy.get(), value.get());
    EXPECT_EQ(copy->getType(), GetParam());
    EXPECT_TRUE(copy->equalsValue(value.get()));
    EXPECT_NE(copy->getHashCode(theirs), value->getHashCode(mine));
    EXPECT_EQ(kel::test::referencesOf(*copy), 1);
}

TEST_P(EveryKind, ACopyHasNoObservers) {
    Watcher watcher;
    value->addObserver(&watcher);
    const Value copy(KEL_Impl::of(value->copy()));
    EXPECT_EQ(copy->countObservers(), 0);
}

TEST_P(EveryKind, ACopyHasAPublicClassToo) {
    const Held<KEL> copy(value->copy());
    EXPECT_NE(dynamic_cast<KEL_Observable*>(copy.get()), nullptr);
}

TEST_P(EveryKind, TakesOverItsOwnKindAndNotifiesOnce) {
    const Value target(GetParam() == KELKind_MemBlock ? new KEL_MemBlock_Impl(3, nullptr)
                                                      : kel::createValue(GetParam(), nullptr));
    Watcher watcher;
    target->addObserver(&watcher);
    target->assign(value.get());
    EXPECT_TRUE(target->equalsValue(value.get()));
    EXPECT_EQ(watcher.calls(), 1);
}

TEST_P(EveryKind, RefusesToTakeOverAnotherKind) {
    Watcher watcher;
    value->addObserver(&watcher);
    for (int32_t kind = 1; kind < 10; ++kind) {
        if (kind != GetParam()) {
            const Value other = sampleOf(kind);
            EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { value->assign(other.get()); }),
                      differentTypes);
        }
    }
    EXPECT_TRUE(value->equalsValue(sampleOf(GetParam()).get()));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(EveryKind, AssigningNullChangesNothing) {
    Watcher watcher;
    value->addObserver(&watcher);
    value->assign(nullptr);
    value->assignConverted(nullptr, true);
    EXPECT_TRUE(value->equalsValue(sampleOf(GetParam()).get()));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(EveryKind, AssigningItselfChangesNoContents) {
    value->assign(value.get());
    value->assignConverted(value.get(), true);
    EXPECT_TRUE(value->equalsValue(sampleOf(GetParam()).get()));
}

TEST_P(EveryKind, ConvertsFromEveryKindThatHasAForm) {
    const bool isScalar = GetParam() <= 4 || GetParam() == KELKind_String;
    for (int32_t kind = 1; kind < 10; ++kind) {
        const Value source = sampleOf(kind);
        const Value target = sampleOf(GetParam());
        Watcher watcher;
        target->addObserver(&watcher);
        target->assignConverted(source.get(), true);
        const bool hasForm = kind == GetParam() || (isScalar && (kind <= 4 || kind == 6));
        EXPECT_EQ(watcher.calls(), hasForm ? 1 : 0) << kind;
        EXPECT_EQ(target->getType(), GetParam());
    }
}

TEST_P(EveryKind, ConvertingKeepsTheIdentityAndIsQuietWhenAskedTo) {
    JHashCode before;
    JHashCode after;
    Watcher watcher;
    value->getHashCode(before);
    value->addObserver(&watcher);
    value->assignConverted(sampleOf(GetParam()).get(), false);
    EXPECT_EQ(value->getHashCode(after), before);
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(EveryKind, FreeingATextThatWasNeverMadeDoesNothing) {
    value->freeString();
    EXPECT_TRUE(value->equalsValue(sampleOf(GetParam()).get()));
}

} // namespace
