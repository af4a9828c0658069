#include "platform/Guid.h"

#include "support/Guids.h"
#include "support/Thrown.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Array_Impl.h"
#include "values/KEL_Int_Impl.h"
#include "values/KEL_String_Impl.h"
#include "values/KEL_Struct_Impl.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

using kel::platform::createGuid;
using kel::test::areDistinct;
using kel::test::draw;
using kel::test::thrownMessage;
using kel::test::Words;

/// While alive, identities cannot be drawn.
class NoGuids {
public:
    NoGuids() : before_(kel::platform::exchangeGuidSource([](JHashCode&) { return false; })) {}
    NoGuids(const NoGuids&) = delete;
    NoGuids& operator=(const NoGuids&) = delete;
    ~NoGuids() { kel::platform::exchangeGuidSource(before_); }

private:
    kel::platform::GuidSource before_;
};

TEST(Guid, IsOfVersion4AndVariant1) {
    for (int i = 0; i < 10000; ++i) {
        JHashCode guid;
        ASSERT_TRUE(createGuid(guid));
        const KELGuid layout = guid.toGuid();
        ASSERT_EQ(layout.data3 >> 12, 4);
        ASSERT_EQ(layout.data4[0] >> 6, 2);
    }
}

TEST(Guid, EveryOtherBitVaries) {
    Words ones = {};
    Words zeros = {};
    for (const Words& words : draw(1000)) {
        for (std::size_t i = 0; i < 4; ++i) {
            ones[i] |= words[i];
            zeros[i] |= ~words[i];
        }
    }
    EXPECT_EQ(ones, (Words{0xFFFFFFFFU, 0x4FFFFFFFU, 0xFFFFFFBFU, 0xFFFFFFFFU}));
    EXPECT_EQ(zeros, (Words{0xFFFFFFFFU, 0xBFFFFFFFU, 0xFFFFFF7FU, 0xFFFFFFFFU}));
}

TEST(Guid, AMillionAreDistinct) {
    EXPECT_TRUE(areDistinct(draw(1000000)));
}

TEST(Guid, ThreadsNeverShareASequence) {
    std::array<std::vector<Words>, 8> drawn;
    std::vector<std::thread> threads;
    for (std::vector<Words>& mine : drawn) {
        threads.emplace_back([&mine] { mine = draw(20000); });
    }
    std::vector<Words> all;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        threads[i].join();
        all.insert(all.end(), drawn[i].begin(), drawn[i].end());
    }
    EXPECT_TRUE(areDistinct(std::move(all)));
}

TEST(Guid, AFailingSourceIsReported) {
    const NoGuids none;
    JHashCode guid;
    EXPECT_FALSE(createGuid(guid));
}

TEST(Guid, NullPutsThePlatformsOwnSourceBack) {
    { const NoGuids none; }
    kel::platform::exchangeGuidSource(nullptr);
    EXPECT_NE(draw(), draw());
}

TEST(Guid, AnObjectWithoutAnIdentityCannotBeMade) {
    const NoGuids none;
    EXPECT_EQ(thrownMessage<JException>([] { const JObject object; }), "Cannot create hash code.");
}

TEST(Guid, NoValueCanBeMadeWithoutAnIdentity) {
    const NoGuids none;
    const auto messageOfMaking = [](auto makeValue) {
        return thrownMessage<JException>([&] { makeValue()->release(); });
    };
    EXPECT_EQ(messageOfMaking([] { return new KEL_Int_Impl(5); }), "Cannot create hash code.");
    EXPECT_EQ(messageOfMaking([] { return new KEL_String_Impl("x"); }), "Cannot create hash code.");
    EXPECT_EQ(messageOfMaking([] { return new KEL_Array_Impl(); }), "Cannot create hash code.");
    EXPECT_EQ(messageOfMaking([] { return new KEL_Struct_Impl(); }), "Cannot create hash code.");
}

TEST(Guid, FactoriesLetTheFailureThrough) {
    const NoGuids none;
    EXPECT_EQ(thrownMessage<JException>([] { CreateKELInt(5); }), "Cannot create hash code.");
    EXPECT_EQ(thrownMessage<JException>([] { CreateKELString("x"); }), "Cannot create hash code.");
    EXPECT_EQ(thrownMessage<JException>([] { CreateKELArray(); }), "Cannot create hash code.");
    EXPECT_EQ(thrownMessage<JException>([] { CreateKELGuid(); }), "Cannot create hash code.");
}

TEST(Guid, AnExceptionNeedsAnIdentityToo) {
    const NoGuids none;
    EXPECT_EQ(thrownMessage<JException>([] { throw JIOException("unread"); }),
              "Cannot create hash code.");
    EXPECT_EQ(thrownMessage<JException>([] { throw new KELIOException_Impl("unread"); }),
              "Cannot create hash code.");
}

TEST(Guid, AGivenIdentityIsNotDrawn) {
    const NoGuids none;
    const JPointer<KEL_Int_Impl> value(new KEL_Int_Impl(JHashCode(1, 2, 3, 4), 5));
    EXPECT_EQ(value->getValue(), 5);
}

/// While alive, counts the identities that are drawn at once.
class CountedGuids {
public:
    CountedGuids() : before_(kel::platform::exchangeGuidSource(draw)) { drawn = 0; }
    CountedGuids(const CountedGuids&) = delete;
    CountedGuids& operator=(const CountedGuids&) = delete;
    ~CountedGuids() { kel::platform::exchangeGuidSource(before_); }

    static inline int drawn = 0;

private:
    static bool draw(JHashCode& out) {
        out = JHashCode(static_cast<uint32_t>(++drawn), 0, 0, 1);
        return true;
    }
    kel::platform::GuidSource before_;
};

TEST(Guid, ASourceThatCanFailIsAskedForEachValueAtOnce) {
    const CountedGuids counted;
    const JPointer<KEL_Int_Impl> value(new KEL_Int_Impl(5));
    EXPECT_EQ(CountedGuids::drawn, 1);
    EXPECT_EQ(value->identity(), JHashCode(1, 0, 0, 1));
}

#if !defined(_WIN32)

TEST(Guid, AnAssuredIdentityNeedsNoSource) {
    const JPointer<KEL_Int_Impl> first(new KEL_Int_Impl(1)); // the source is open from now on
    const JPointer<KEL_Int_Impl> value(new KEL_Int_Impl(5));
    const NoGuids none;
    JHashCode asked;
    value->getHashCode(asked);
    EXPECT_FALSE(asked.isZero());
    EXPECT_EQ(value->identity(), asked) << "drawn once";
    EXPECT_FALSE(value->isIdentityGiven());
}

TEST(Guid, ComparingDrawsNothing) {
    const JPointer<KEL_Int_Impl> first(new KEL_Int_Impl(1));
    const JPointer<KEL_Int_Impl> value(new KEL_Int_Impl(5));
    const JPointer<KEL_Int_Impl> other(new KEL_Int_Impl(5));
    EXPECT_TRUE(value->equals(static_cast<const KEL*>(value.get())));
    EXPECT_FALSE(value->equals(static_cast<const KEL*>(other.get())));
    const JPointer<KEL_Int_Impl> same(new KEL_Int_Impl(value->identity(), 5));
    EXPECT_TRUE(value->equals(static_cast<const KEL*>(same.get())));
    EXPECT_TRUE(same->equals(static_cast<const KEL*>(value.get())));
    EXPECT_FALSE(other->equals(static_cast<const KEL*>(same.get())));
}

TEST(Guid, AnIdentityStillToBeDrawnDiffersFromZero) {
    const JPointer<KEL_Int_Impl> first(new KEL_Int_Impl(1));
    const JPointer<KEL_Int_Impl> value(new KEL_Int_Impl(5));
    const JPointer<KEL_Int_Impl> zero(new KEL_Int_Impl(JHashCode(), 5));
    const KEL* a = value.get();
    const KEL* b = zero.get();
    EXPECT_FALSE(a->equals(b));
    EXPECT_FALSE(b->equals(a));
    EXPECT_FALSE(a->equals(a, b));
    EXPECT_FALSE(static_cast<const JObject&>(*value).equals(zero.get()));
    EXPECT_FALSE(static_cast<const JObject&>(*zero).equals(value.get()));
    EXPECT_FALSE(value->identity().isZero());
}

#endif

TEST(Guid, AContainerStaysAsItIsWhenAnElementCannotBeMade) {
    const JPointer<KEL_Array_Impl> array(new KEL_Array_Impl());
    array->addInt(1);
    {
        const NoGuids none;
        EXPECT_EQ(thrownMessage<JException>([&] { array->addInt(2); }), "Cannot create hash code.");
    }
    EXPECT_EQ(array->getCount(), 1);
}

} // namespace
