// Rules for values of every kind: counting, identity, copying, assigning, comparing.
#include "meta/KELFactory.h"
#include "support/Samples.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/ChildCursor.h"
#include "values/KELException_Impl.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using kel::test::equalTo;
using kel::test::everyKind;
using kel::test::Held;
using kel::test::HeldValue;
using kel::test::isScalar;
using kel::test::sampleOf;
using kel::test::thrownMessage;
using kel::test::Watcher;

const std::string differentTypes = "Can't set the value when types are not equal!";

/// Returns the result of the values' own comparison of identities, as a host calls it.
bool areSame(const KEL& value, const KEL* other) {
    return value.equals(other);
}

/// Every test below runs for each kind.
class EveryKind : public ::testing::TestWithParam<KELKind> {
protected:
    HeldValue value = sampleOf(GetParam());
    const HeldValue same = equalTo(value);
};

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, ::testing::ValuesIn(everyKind));

TEST_P(EveryKind, AnswersItsKind) {
    EXPECT_EQ(value->getType(), GetParam());
}

TEST_P(EveryKind, HasChildrenExactlyIfItIsAContainer) {
    kel::ChildCursor cursor(*value);
    EXPECT_EQ(value->isContainer(), cursor.next());
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
    const HeldValue made(kel::createValue(GetParam(), &given));
    JHashCode identity;
    EXPECT_EQ(made->getHashCode(identity), given);
}

TEST_P(EveryKind, EqualsIsIdentity) {
    EXPECT_TRUE(areSame(*value, value.get()));
    EXPECT_FALSE(areSame(*value, same.get()));
    EXPECT_FALSE(areSame(*value, nullptr));
}

TEST_P(EveryKind, ComparesTwoValuesByIdentity) {
    EXPECT_TRUE(value->equals(same.get(), same.get()));
    EXPECT_FALSE(value->equals(value.get(), same.get()));
    EXPECT_FALSE(value->equals(nullptr, same.get()));
    EXPECT_FALSE(value->equals(same.get(), nullptr));
    EXPECT_TRUE(value->equals(nullptr, nullptr));
}

TEST_P(EveryKind, TwoValuesOfOneIdentityAreEqual) {
    const JHashCode given(1, 2, 3, 4);
    const HeldValue first(kel::createValue(GetParam(), &given));
    const HeldValue second(kel::createValue(KELKind_Int, &given));
    EXPECT_TRUE(areSame(*first, second.get()));
}

TEST_P(EveryKind, EqualsAValueOfTheSameContents) {
    EXPECT_TRUE(value->equalsValue(same.get()));
    EXPECT_TRUE(value->equalsValue(value.get()));
    EXPECT_FALSE(value->equalsValue(nullptr));
}

TEST_P(EveryKind, DoesNotEqualAnEmptyValueOfItsKind) {
    const HeldValue empty(kel::createValue(GetParam(), nullptr));
    EXPECT_FALSE(value->equalsValue(empty.get()));
    EXPECT_FALSE(empty->equalsValue(value.get()));
}

TEST_P(EveryKind, EqualsNoOtherKind) {
    for (const KELKind kind : everyKind) {
        if (kind != GetParam()) {
            EXPECT_FALSE(value->equalsValue(sampleOf(kind).get())) << kind;
        }
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
    const HeldValue copy(KEL_Impl::of(value->copy()));
    EXPECT_EQ(copy->countObservers(), 0);
}

TEST_P(EveryKind, ACopyHasAPublicClassToo) {
    const Held<KEL> copy(value->copy());
    EXPECT_NE(dynamic_cast<KEL_Observable*>(copy.get()), nullptr);
}

TEST_P(EveryKind, TakesOverItsOwnKindAndNotifiesOnce) {
    const HeldValue target(GetParam() == KELKind_MemBlock ? new KEL_MemBlock_Impl(3, nullptr)
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
    for (const KELKind kind : everyKind) {
        if (kind != GetParam()) {
            const HeldValue other = sampleOf(kind);
            EXPECT_EQ(thrownMessage<KELNoSuchTypeException>([&] { value->assign(other.get()); }),
                      differentTypes);
        }
    }
    EXPECT_TRUE(value->equalsValue(same.get()));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(EveryKind, AssigningNullChangesNothing) {
    Watcher watcher;
    value->addObserver(&watcher);
    value->assign(nullptr);
    value->assignConverted(nullptr, true);
    EXPECT_TRUE(value->equalsValue(same.get()));
    EXPECT_EQ(watcher.calls(), 0);
}

TEST_P(EveryKind, AssigningItselfChangesNoContents) {
    value->assign(value.get());
    value->assignConverted(value.get(), true);
    EXPECT_TRUE(value->equalsValue(same.get()));
}

TEST_P(EveryKind, ConvertsFromEveryKindThatHasAForm) {
    for (const KELKind kind : everyKind) {
        const HeldValue source = sampleOf(kind);
        const HeldValue target = sampleOf(GetParam());
        Watcher watcher;
        target->addObserver(&watcher);
        target->assignConverted(source.get(), true);
        const bool hasForm = kind == GetParam() || (isScalar(GetParam()) && isScalar(kind));
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
    EXPECT_TRUE(value->equalsValue(same.get()));
}

TEST_P(EveryKind, HasAScalarFormOrTheNeutralOne) {
    JHashCode guid(9, 9, 9, 9);
    if (!isScalar(GetParam())) {
        EXPECT_FALSE(value->toBoolean());
        EXPECT_EQ(value->toInt(), 0);
        EXPECT_EQ(value->toDouble(), 0.0);
        EXPECT_EQ(value->toString(), nullptr);
        EXPECT_EQ(value->toGuid(guid), JHashCode());
    } else {
        EXPECT_NE(value->toString(), nullptr);
    }
}

// ---- The setters of scalars --------------------------------------------------------------------

void setAgain(KEL_Int& value) {
    value.setValue(value.getValue());
}
void setAgain(KEL_Boolean& value) {
    value.setValue(value.getValue());
}
void setAgain(KEL_Double& value) {
    value.setValue(value.getValue());
}
void setAgain(KEL_String& value) {
    value.setValue(value.getValue());
}
void setAgain(KEL_guid& value) {
    JHashCode guid;
    value.setValue(value.getValue(guid));
}

template <class Scalar> void expectOneChangeForEachSetter(const HeldValue& value) {
    auto& scalar = dynamic_cast<Scalar&>(*value);
    Watcher watcher;
    value->addObserver(&watcher);
    setAgain(scalar);
    scalar.setBoolean(true)->setInt(2)->setDouble(2.5)->setguid(JHashCode(4))->setString("3");
    EXPECT_EQ(watcher.calls(), 6);
    const Held<KEL> before(value->copy());
    EXPECT_EQ(scalar.setString(nullptr), &scalar);
    EXPECT_TRUE(value->equalsValue(before.get()));
    EXPECT_EQ(watcher.calls(), 6);
}

TEST(EveryScalar, EverySetterNotifiesOnceAndNullTextSetsNothing) {
    expectOneChangeForEachSetter<KEL_Int>(sampleOf(KELKind_Int));
    expectOneChangeForEachSetter<KEL_Boolean>(sampleOf(KELKind_Boolean));
    expectOneChangeForEachSetter<KEL_Double>(sampleOf(KELKind_Double));
    expectOneChangeForEachSetter<KEL_String>(sampleOf(KELKind_String));
    expectOneChangeForEachSetter<KEL_guid>(sampleOf(KELKind_guid));
}

} // namespace
