// The cost of values. These are exact counts: whoever makes a value larger changes them on purpose,
// and docs/storage.md with them.
#include "meta/KELFactory.h"
#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace {

using kel::test::AllocationBudget;
using kel::test::failEachAllocation;
using kel::test::Held;

/// The storage that values allocate.
struct Cost {
    std::size_t bytes = 0;
    std::size_t allocations = 0;

    friend bool operator==(const Cost&, const Cost&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Cost& cost) {
        return out << cost.bytes << " bytes in " << cost.allocations << " allocations";
    }
};

/// Returns the storage that make allocates for the new value that it returns.
template <class Make> Cost costOf(const Make& make) {
    const auto makeAndRelease = [&] { Held<KEL>(make()).clear(); };
    makeAndRelease(); // so that storage for all values is allocated already
    Cost cost;
    {
        const AllocationBudget budget(1 << 20);
        const Held<KEL> value(make());
        cost.bytes = (1 << 20) - budget.left();
    }
    cost.allocations = failEachAllocation(makeAndRelease);
    return cost;
}

KEL* newString(const char* text) {
    return new KEL_String_Impl(text);
}

KEL* newArray(int32_t count) {
    Held<KEL_Array_Impl> array(new KEL_Array_Impl());
    for (int32_t i = 0; i < count; ++i) {
        array->addInt(i);
    }
    return array.detach();
}

KEL* newStruct(int32_t count) {
    Held<KEL_Struct_Impl> fields(new KEL_Struct_Impl());
    for (int32_t i = 0; i < count; ++i) {
        fields->putInt(std::string(1, static_cast<char>('a' + i)).c_str(), i);
    }
    return fields.detach();
}

// Sizes of objects depend on the compiler's layout of virtual bases.
#if defined(__x86_64__) && defined(__linux__)

Cost costOfKind(KELKind kind) {
    return costOf([kind] { return kel::createValue(kind, nullptr); });
}

TEST(CostOfValues, AnEmptyValueOfEachKind) {
    EXPECT_EQ(costOfKind(KELKind_Int), (Cost{104, 1}));
    EXPECT_EQ(costOfKind(KELKind_Boolean), (Cost{104, 1}));
    EXPECT_EQ(costOfKind(KELKind_Double), (Cost{104, 1}));
    EXPECT_EQ(costOfKind(KELKind_guid), (Cost{112, 1}));
    EXPECT_EQ(costOfKind(KELKind_MemBlock), (Cost{129, 2}));
    EXPECT_EQ(costOfKind(KELKind_String), (Cost{120, 1}));
    EXPECT_EQ(costOfKind(KELKind_Array), (Cost{112, 1}));
    EXPECT_EQ(costOfKind(KELKind_Struct), (Cost{120, 1}));
    EXPECT_EQ(costOfKind(KELKind_Manager), (Cost{112, 1}));
    EXPECT_EQ(costOfKind(KELKind_Selector), (Cost{480, 4}));
    EXPECT_EQ(costOfKind(KELKind_MultiSelector), (Cost{592, 5}));
    EXPECT_EQ(costOfKind(KELKind_IndexList), (Cost{352, 3}));
    EXPECT_EQ(costOfKind(KELKind_MetaKel), (Cost{352, 5}));
    EXPECT_EQ(costOfKind(KELKind_MetaKelDescriptor), (Cost{352, 5}));
    EXPECT_EQ(costOfKind(KELKind_MetaKelVarDescriptor), (Cost{352, 5}));
}

TEST(CostOfValues, TextsAndContainers) {
    EXPECT_EQ(costOf([] { return newString("23 characters, in place"); }), (Cost{120, 1}));
    EXPECT_EQ(costOf([] { return newString("24 characters, elsewhere"); }), (Cost{145, 2}));
    EXPECT_EQ(costOf([] { return newArray(10); }), (Cost{1392, 15}));
    EXPECT_EQ(costOf([] { return newStruct(10); }), (Cost{2000, 16}));
}

#endif

#if defined(_MSC_VER) && !defined(_WIN64)

TEST(CostOfValues, AnEmptyValueInMicrosoftsAbi) {
    EXPECT_EQ(costOf([] { return new KEL_Int_Impl(0); }), (Cost{88, 1}));
    EXPECT_EQ(costOf([] { return newString(""); }), (Cost{108, 1}));
    EXPECT_EQ(costOf([] { return newArray(0); }), (Cost{96, 1}));
    EXPECT_EQ(costOf([] { return newStruct(0); }), (Cost{108, 1}));
}

#endif

TEST(CostOfValues, AScalarAndAShortTextAreOneAllocation) {
    for (const KELKind kind :
         {KELKind_Int, KELKind_Boolean, KELKind_Double, KELKind_guid, KELKind_String}) {
        EXPECT_EQ(costOf([kind] { return kel::createValue(kind, nullptr); }).allocations, 1U)
            << kind;
    }
    EXPECT_EQ(costOf([] { return newString("23 characters, in place"); }).allocations, 1U);
}

TEST(CostOfValues, ASetterOfAnElementAllocatesNothing) {
    const Held<KEL> array(newArray(3));
    const Held<KEL> fields(newStruct(3));
    EXPECT_EQ(failEachAllocation([&] {
                  dynamic_cast<KEL_Array&>(*array).setInt(1, 5);
                  dynamic_cast<KEL_Struct&>(*fields).setInt("b", 5);
              }),
              0U);
}

} // namespace
