#include "meta/KELFactory.h"
#include "meta/KEL_Manager_Impl.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Samples.h"

#include <gtest/gtest.h>
#include <kel/kel.h>

namespace {

using kel::createValue;
using kel::test::everyKind;
using kel::test::Held;

/// A new value of the kind as the public class T.
template <class T> class Made {
public:
    explicit Made(int32_t kind) : value_(createValue(kind, nullptr)) {}
    T* operator->() const { return dynamic_cast<T*>(value_.get()); }

private:
    Held<KEL_Impl> value_;
};

TEST(KELFactory, ScalarsAreZeroFalseOrEmpty) {
    JHashCode guid(9, 9, 9, 9);
    EXPECT_EQ(Made<KEL_Int>(KELKind_Int)->getValue(), 0);
    EXPECT_FALSE(Made<KEL_Boolean>(KELKind_Boolean)->getValue());
    EXPECT_EQ(Made<KEL_Double>(KELKind_Double)->getValue(), 0.0);
    EXPECT_TRUE(Made<KEL_guid>(KELKind_guid)->getValue(guid).isZero());
    EXPECT_STREQ(Made<KEL_String>(KELKind_String)->getValue(), "");
}

TEST(KELFactory, ContainersAndBlocksAreEmpty) {
    EXPECT_EQ(Made<KEL_MemBlock>(KELKind_MemBlock)->getSize(), 0);
    EXPECT_EQ(Made<KEL_Array>(KELKind_Array)->getCount(), 0);
    EXPECT_EQ(Made<KEL_Struct>(KELKind_Struct)->getCount(), 0);
    EXPECT_EQ(Made<KEL_Manager>(KELKind_Manager)->size(), 0);
}

TEST(KELFactory, ValuesBearTheGivenIdentityAndOneReference) {
    const JHashCode given(1, 2, 3, 4);
    for (const KELKind kind : everyKind) {
        const Held<KEL_Impl> value(createValue(kind, &given));
        JHashCode identity;
        EXPECT_EQ(value->getType(), kind);
        EXPECT_EQ(value->getHashCode(identity), given) << kind;
        EXPECT_EQ(kel::test::referencesOf(*value), 1) << kind;
    }
}

TEST(KELFactory, ValuesAreEqualWithAndWithoutAGivenIdentity) {
    const JHashCode given(1, 2, 3, 4);
    for (const KELKind kind : everyKind) {
        const Held<KEL_Impl> with(createValue(kind, &given));
        const Held<KEL_Impl> without(createValue(kind, nullptr));
        // Selectors are equal only over the same list, and each of these has its own.
        const bool isSelector = kind == KELKind_Selector || kind == KELKind_MultiSelector;
        EXPECT_EQ(with->equalsValue(without.get()), !isSelector) << kind;
    }
}

TEST(KELFactory, WhateverAllocationFailsTheHostSeesTheRuntimesFailure) {
    // failEachAllocation accepts every report of a lack of memory. The expected one is caught here.
    KEL_Manager_Impl manager;
    const JHashCode given(1, 2, 3, 4);
    for (const KELKind kind : everyKind) {
        for (const bool hasIdentity : {false, true}) {
            std::size_t failures = 0;
            const auto create = [&] {
                try {
                    DeleteKEL(hasIdentity ? manager.createKel(kind, given)
                                          : manager.createKel(kind));
                } catch (const JOutOfMemoryException& failure) {
                    const JPointer<JString> message(failure.getMessage());
                    EXPECT_TRUE(message.isNull() || message->equals("Out of memory!")) << kind;
                    ++failures;
                }
            };
            const std::size_t allocations = kel::test::failEachAllocation(create);
            EXPECT_GE(allocations, 1U) << kind;
            EXPECT_EQ(failures, 2 * allocations) << kind;
        }
    }
}

} // namespace
