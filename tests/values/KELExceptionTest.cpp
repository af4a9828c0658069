#include "support/AllocationFailure.h"
#include "support/Thrown.h"
#include "values/KELException_Impl.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace {

using kel::test::messageAndRelease;
using kel::test::messageOf;

/// Returns whether a handler for Caught pointers catches a pointer to Thrown. Releases the object.
template <class Caught, class Thrown> bool catches() {
    auto* failure = new Thrown("text");
    try {
        throw failure;
    } catch (Caught*) {
        static_cast<KELException_Impl*>(failure)->release();
        return true;
    } catch (...) {
        static_cast<KELException_Impl*>(failure)->release();
        return false;
    }
}

/// An implementation with its public class and the runtime exception that it also derives from. The
/// latter is void if it derives from none.
template <class Impl, class Public, class Runtime = void> struct Kind {
    using Implementation = Impl;
    using PublicClass = Public;
    using RuntimeClass = Runtime;
    static constexpr bool isDoubled = !std::is_void_v<Runtime>;
};

using Kinds = ::testing::Types<
    Kind<KELException_Impl, KELException>,
    Kind<KELArrayIndexOutOfBoundsException_Impl, KELArrayIndexOutOfBoundsException>,
    Kind<KELNoSuchElementException_Impl, KELNoSuchElementException>,
    Kind<KELNoSuchTypeException_Impl, KELNoSuchTypeException>,
    Kind<KELRenameException_Impl, KELRenameException>,
    Kind<KELMemBlockException_Impl, KELMemBlockException>,
    Kind<KELOutOfMemoryException_Impl, KELOutOfMemoryException, JOutOfMemoryException>,
    Kind<KELIOException_Impl, KELIOException, JIOException>,
    Kind<KELEOFException_Impl, KELEOFException, JEOFException>,
    Kind<KELNullPointerException_Impl, KELNullPointerException, JNullPointerException>>;

template <class T> class KELExceptionFamily : public ::testing::Test {};
TYPED_TEST_SUITE(KELExceptionFamily, Kinds);

TYPED_TEST(KELExceptionFamily, WithoutArgumentsHasTheGeneralMessage) {
    EXPECT_EQ(messageAndRelease(new typename TypeParam::Implementation()),
              "General KEL exception.");
}

TYPED_TEST(KELExceptionFamily, CarriesACopyOfItsMessage) {
    char text[] = "what went wrong";
    auto* failure = new typename TypeParam::Implementation(text);
    text[0] = '?';
    EXPECT_EQ(messageAndRelease(failure), "what went wrong");
}

TYPED_TEST(KELExceptionFamily, AnswersTheSameThroughBothMessageSlots) {
    KELException* failure = new typename TypeParam::Implementation("text");
    EXPECT_EQ(failure->getMessage(), failure->getMessageText());
    EXPECT_STREQ(failure->getMessageText(), "text");
    failure->release();
}

TYPED_TEST(KELExceptionFamily, CountsReferencesButAnswersOne) {
    KELException* failure = new typename TypeParam::Implementation("text");
    EXPECT_EQ(failure->getRefCount(), 1);
    failure->addRef();
    EXPECT_EQ(failure->getRefCount(), 1);
    EXPECT_EQ(failure->release(), 1);
    EXPECT_EQ(failure->release(), 0);
}

TYPED_TEST(KELExceptionFamily, AnswersOneThroughTheRuntimesInterfaceToo) {
    auto* failure = new typename TypeParam::Implementation("text");
    failure->addRef();
    EXPECT_EQ(static_cast<JObject*>(failure)->getRefCount(), 1);
    EXPECT_EQ(failure->release(), 1);
    failure->release();
}

TYPED_TEST(KELExceptionFamily, HasAFreshIdentity) {
    auto* first = new typename TypeParam::Implementation("text");
    auto* second = new typename TypeParam::Implementation("text");
    EXPECT_FALSE(equals(static_cast<JObject*>(first), static_cast<JObject*>(second)));
    first->release();
    second->release();
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsItsImplementationClass) {
    EXPECT_TRUE(
        (catches<typename TypeParam::Implementation, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsItsPublicClass) {
    EXPECT_TRUE((catches<typename TypeParam::PublicClass, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsKELException) {
    EXPECT_TRUE((catches<KELException, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsTheInterface) {
    EXPECT_TRUE((catches<KELInterface_Exception_V1, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsKELExceptionImpl) {
    EXPECT_TRUE((catches<KELException_Impl, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsJObject) {
    EXPECT_TRUE((catches<JObject, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsAnyPointer) {
    EXPECT_TRUE((catches<void, typename TypeParam::Implementation>()));
    EXPECT_TRUE((catches<const void, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsJExceptionOnlyWithoutARuntimeClass) {
    EXPECT_EQ((catches<JException, typename TypeParam::Implementation>()), !TypeParam::isDoubled);
}

TYPED_TEST(KELExceptionFamily, IsCaughtAsItsRuntimeClassAndNoOther) {
    using Impl = typename TypeParam::Implementation;
    using Runtime = typename TypeParam::RuntimeClass;
    const auto isCaughtAs = [](auto* runtime) {
        using Caught = std::remove_pointer_t<decltype(runtime)>;
        return catches<Caught, Impl>() == std::is_same_v<Caught, Runtime>;
    };
    EXPECT_TRUE(isCaughtAs(static_cast<JOutOfMemoryException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JIOException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JEOFException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JNullPointerException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JArrayIndexOutOfBoundsException*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<JNoSuchElementException*>(nullptr)));
}

TYPED_TEST(KELExceptionFamily, IsNotCaughtAsAnotherPublicClass) {
    using Other =
        std::conditional_t<std::is_same_v<typename TypeParam::PublicClass, KELRenameException>,
                           KELNoSuchElementException, KELRenameException>;
    EXPECT_FALSE((catches<Other, typename TypeParam::Implementation>()));
}

TYPED_TEST(KELExceptionFamily, CarriesItsMessageInEveryMessagePart) {
    auto* failure = new typename TypeParam::Implementation("text");
    EXPECT_EQ(messageOf(static_cast<JException&>(static_cast<KELException_Impl&>(*failure))),
              "text");
    if constexpr (TypeParam::isDoubled) {
        EXPECT_EQ(messageOf(static_cast<typename TypeParam::RuntimeClass&>(*failure)), "text");
    }
    failure->release();
}

TYPED_TEST(KELExceptionFamily, IsReleasedThroughItsJObject) {
    try {
        throw new typename TypeParam::Implementation("text");
    } catch (JObject* failure) {
        EXPECT_EQ(failure->release(), 0);
    }
}

TEST(KELException, WithoutMemoryForItsMessageItHasAnEmptyOne) {
    const kel::test::FailingAllocation failing(1, true); // the first one is the exception's own
    auto* failure = new KELIOException_Impl("text");
    EXPECT_STREQ(failure->getMessage(), "");
    failure->release();
}

TEST(KELException, IsThrownAsItselfWhenItHasNoKindOfItsOwn) {
    const auto act = [] { throw new KELException_Impl("Not implemented."); };
    EXPECT_EQ(kel::test::thrownMessage<KELException_Impl>(act), "Not implemented.");
}

} // namespace
