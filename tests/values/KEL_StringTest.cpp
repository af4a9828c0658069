#include "support/AllocationFailure.h"
#include "support/CommaLocale.h"
#include "support/Held.h"
#include "support/Scalars.h"
#include "support/Thrown.h"
#include "support/Watcher.h"
#include "values/KEL_String_Impl.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using kel::test::convertedGuid;
using kel::test::Held;
using kel::test::make;
using kel::test::thrownMessage;
using kel::test::Watcher;

Held<KEL_String> aString(const char* text) {
    return Held<KEL_String>(new KEL_String_Impl(text));
}

TEST(KEL_String, IsOfItsKindAndHoldsACopyOfItsText) {
    char text[] = "abc";
    const Held<KEL_String> value = aString(text);
    text[0] = '?';
    EXPECT_EQ(value->getType(), 6);
    EXPECT_STREQ(value->getValue(), "abc");
}

TEST(KEL_String, MadeFromNullIsEmpty) {
    EXPECT_STREQ(aString(nullptr)->getValue(), "");
}

TEST(KEL_String, MadeFromAPartOfATextHoldsThatPart) {
    const auto value = make<KEL_String_Impl>(std::string_view("abcdef").substr(1, 3));
    EXPECT_STREQ(value->getValue(), "bcd");
    EXPECT_STREQ(make<KEL_String_Impl>(std::string_view())->getValue(), "");
}

TEST(KEL_String, IsTrueWithAnyCharacters) {
    EXPECT_TRUE(aString("0")->toBoolean());
    EXPECT_TRUE(aString("false")->toBoolean());
    EXPECT_TRUE(aString(" ")->toBoolean());
    EXPECT_FALSE(aString("")->toBoolean());
}

TEST(KEL_String, IsItsLeadingNumber) {
    EXPECT_EQ(aString("0")->toInt(), 0);
    EXPECT_EQ(aString("12abc")->toInt(), 12);
    EXPECT_EQ(aString("abc")->toInt(), 0);
    EXPECT_EQ(aString("2.5abc")->toDouble(), 2.5);
    EXPECT_EQ(aString("")->toDouble(), 0.0);
    EXPECT_EQ(convertedGuid(*aString("12abc")), JHashCode(12, 0, 0, 0));
    EXPECT_EQ(convertedGuid(*aString("-1")), JHashCode(0xFFFFFFFFU, 0, 0, 0));
}

TEST(KEL_String, AGuidTextIsNotReadAsAGuid) {
    EXPECT_EQ(convertedGuid(*aString("3F2504E0-4F89-11D3-9A0C-0305E82C3301")),
              JHashCode(3, 0, 0, 0));
}

TEST(KEL_String, TextIsItsOwnCharacters) {
    const Held<KEL_String> value = aString("abc");
    EXPECT_EQ(value->toString(), value->getValue());
    value->freeString();
    EXPECT_STREQ(value->toString(), "abc");
}

TEST(KEL_String, GetCharAnswersEveryCharacter) {
    const Held<KEL_String> value = aString("a\xFF");
    EXPECT_EQ(value->getChar(0), 'a');
    EXPECT_EQ(value->getChar(1), '\xFF');
    EXPECT_EQ(value->getChar(-1), '\0');
}

TEST(KEL_String, GetCharPastTheEndThrows) {
    const Held<KEL_String> value = aString("abc");
    const auto getChar = [&](int32_t index) {
        return thrownMessage<KELArrayIndexOutOfBoundsException>([&] { value->getChar(index); });
    };
    EXPECT_EQ(getChar(3), "Attemping to reference past end of string.");
    EXPECT_EQ(getChar(INT32_MAX), "Attemping to reference past end of string.");
}

TEST(KEL_String, SettersStoreTheTextForm) {
    const Held<KEL_String> value = aString("");
    EXPECT_STREQ(value->setBoolean(true)->getValue(), "true");
    EXPECT_STREQ(value->setBoolean(false)->getValue(), "false");
    EXPECT_STREQ(value->setInt(-7)->getValue(), "-7");
    EXPECT_STREQ(value->setDouble(-2.5)->getValue(), "-2.500000");
    EXPECT_STREQ(value->setString("abc")->getValue(), "abc");
    EXPECT_STREQ(value->setguid(JHashCode(1))->getValue(), "00000001-0000-0000-0000-000000000000");
}

TEST(KEL_String, SetFromNullChangesNothing) {
    const Held<KEL_String> value = aString("abc");
    value->setValue(nullptr);
    value->setString(nullptr);
    EXPECT_STREQ(value->getValue(), "abc");
}

TEST(KEL_String, SetFromItsOwnCharactersIsSafe) {
    const Held<KEL_String> value = aString("abc");
    value->setValue(value->getValue() + 1);
    EXPECT_STREQ(value->getValue(), "bc");
}

TEST(KEL_String, NumbersAreTheSameInEveryLocale) {
    const kel::test::CommaLocale comma;
    KEL_NEED(comma);
    EXPECT_STREQ(aString("")->setDouble(1234.5)->getValue(), "1234.500000");
    EXPECT_EQ(aString("1.5")->toDouble(), 1.5);
    EXPECT_EQ(aString("1,5")->toDouble(), 1.0);
}

/// A text that does not fit the object of a String.
constexpr const char* longText = "a text of more than 23 characters";

TEST(KEL_String, KeepsItsTextWhenTheNewOneCannotBeAllocated) {
    const auto value = make<KEL_String_Impl>(longText);
    Watcher watcher;
    value->addObserver(&watcher);
    const auto expectUnchanged = [&] { EXPECT_STREQ(value->getValue(), longText); };
    kel::test::failEachAllocation([&] { value->setValue(longText); }, expectUnchanged);
    EXPECT_EQ(watcher.calls(), 2); // the two runs in which nothing failed
}

TEST(KEL_String, FailureToAllocateIsTheStringsOwn) {
    const Held<KEL_String> value = aString("abc");
    const kel::test::FailingAllocation failing(0);
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([&] { value->setValue(longText); }),
              "Cannot allocate memory in JString constructor.");
}

} // namespace
