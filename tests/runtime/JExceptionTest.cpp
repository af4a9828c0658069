#include "support/AllocationFailure.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <kel/JException.h>
#include <type_traits>

namespace {

using kel::test::messageOf;

template <class Caught, class Thrown> bool catches(const Thrown& failure) {
    try {
        throw failure;
    } catch (const Caught&) {
        return true;
    } catch (...) {
        return false;
    }
}

template <class Failure> class RuntimeFailure : public ::testing::Test {};

using RuntimeFailures =
    ::testing::Types<JException, JOutOfMemoryException, JArrayIndexOutOfBoundsException,
                     JNoSuchElementException, JIOException, JEOFException, JNullPointerException,
                     TokenizerException>;
TYPED_TEST_SUITE(RuntimeFailure, RuntimeFailures);

TYPED_TEST(RuntimeFailure, CarriesACopyOfItsMessage) {
    char text[] = "what went wrong";
    const TypeParam failure(text);
    text[0] = '?';
    EXPECT_EQ(messageOf(failure), "what went wrong");
}

TYPED_TEST(RuntimeFailure, GivesItsMessageWithAReference) {
    const TypeParam failure("text");
    const JPointer<JString> first(failure.getMessage());
    const JPointer<JString> second(failure.getMessageString());
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(first->getRefCount(), 3);
}

TYPED_TEST(RuntimeFailure, IsCaughtAsItselfAsJExceptionAndAsJObject) {
    const TypeParam failure("text");
    EXPECT_TRUE(catches<TypeParam>(failure));
    EXPECT_TRUE(catches<JException>(failure));
    EXPECT_TRUE(catches<JObject>(failure));
}

TYPED_TEST(RuntimeFailure, OutlivesNothingOfItsMessage) {
    JPointer<JString> message;
    {
        const TypeParam failure("text");
        message = failure.getMessage();
    }
    EXPECT_STREQ(message->chars(), "text");
    EXPECT_EQ(message->getRefCount(), 1);
}

TYPED_TEST(RuntimeFailure, HasOneJObjectAndAFreshIdentity) {
    const TypeParam first("text");
    const TypeParam second("text");
    EXPECT_EQ(first.getRefCount(), 1);
    EXPECT_FALSE(first.equals(&second));
}

TYPED_TEST(RuntimeFailure, HasNoMessageWhenItCannotBeAllocated) {
    for (const std::size_t allowed : {0U, 1U}) {
        const kel::test::FailingAllocation failing(allowed);
        const TypeParam failure("text");
        EXPECT_EQ(failure.getMessage(), nullptr);
    }
}

/// Returns what the handler of include/kel/JException.h prints.
template <class Action> std::string printedBy(const Action& action) {
    try {
        action();
    } catch (const JException& failure) {
        JPointer<JString> message(failure.getMessage());
        return message.isValid() ? message->chars() : "Out of memory!";
    }
    return "(nothing thrown)";
}

TEST(JException, TheRecommendedHandlerNeedsNoMessage) {
    EXPECT_EQ(printedBy([] { throw JIOException("text"); }), "text");
    EXPECT_EQ(printedBy([] {
                  const kel::test::FailingAllocation failing(0, true);
                  throw JIOException("text");
              }),
              "Out of memory!");
}

TEST(JException, OneKindIsNotCaughtAsAnother) {
    EXPECT_FALSE(catches<JIOException>(JEOFException("text")));
    EXPECT_FALSE(catches<JEOFException>(JIOException("text")));
    EXPECT_FALSE(catches<JOutOfMemoryException>(JException("text")));
}

TEST(JException, KeepsAGivenIdentity) {
    const JException failure(JHashCode(1, 2, 3, 4), "text");
    JHashCode identity;
    EXPECT_EQ(failure.getHashCode(identity), JHashCode(1, 2, 3, 4));
    EXPECT_EQ(messageOf(failure), "text");
}

TEST(JException, ThrownAsAPointerIsCaughtAsEveryBase) {
    const auto isCaughtAs = [](auto* example) {
        try {
            throw new JIOException("text");
        } catch (decltype(example) failure) {
            static_cast<JObject*>(failure)->release();
            return true;
        }
    };
    EXPECT_TRUE(isCaughtAs(static_cast<JIOException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JObject*>(nullptr)));
}

TEST(JException, TheKindsInheritJExceptionVirtually) {
    class Two : public JIOException, public JEOFException {
    public:
        Two() : JException("both"), JIOException("left"), JEOFException("right") {}
    };
    EXPECT_EQ(messageOf(Two()), "both");
}

} // namespace
