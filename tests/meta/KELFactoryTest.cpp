#include "meta/KELFactory.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"

#include <gtest/gtest.h>
#include <kel/kel.h>

namespace {

using kel::createValue;
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
    for (int32_t kind = 1; kind < 10; ++kind) {
        const Held<KEL_Impl> value(createValue(kind, &given));
        JHashCode identity;
        EXPECT_EQ(value->getType(), kind);
        EXPECT_EQ(value->getHashCode(identity), given) << kind;
        EXPECT_EQ(kel::test::referencesOf(*value), 1) << kind;
    }
}

TEST(KELFactory, ValuesAreEqualWithAndWithoutAGivenIdentity) {
    const JHashCode given(1, 2, 3, 4);
    for (int32_t kind = 1; kind < 10; ++kind) {
        const Held<KEL_Impl> with(createValue(kind, &given));
        const Held<KEL_Impl> without(createValue(kind, nullptr));
        EXPECT_TRUE(with->equalsValue(without.get())) << kind;
    }
}

TEST(KELFactory, EveryAllocationMayFail) {
    for (int32_t kind = 1; kind < 10; ++kind) {
        const auto create = [kind] { Held<KEL_Impl>(createValue(kind, nullptr)).clear(); };
        EXPECT_GE(kel::test::failEachAllocation(create), 1U) << kind;
    }
}

} // namespace
