#include "runtime/MemoryPool.h"
#include "support/AllocationFailure.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <kel/JString.h>

namespace {

using kel::test::FailingAllocation;
using kel::test::thrownMessage;

const std::string noMemory = "Cannot allocate memory in JString constructor.";

/// Returns the message of the exception that action throws when its first allocation fails.
template <class Action> std::string messageWithoutMemory(const Action& action) {
    const FailingAllocation failing(0);
    return thrownMessage<JOutOfMemoryException>(action);
}

std::string textOf(const JPointer<JString>& string) {
    return string->chars();
}

TEST(JString, CopiesItsText) {
    char text[] = "abc";
    const JString string(text);
    text[0] = 'x';
    EXPECT_STREQ(string.chars(), "abc");
    EXPECT_EQ(string.length(), 3U);
}

TEST(JString, MadeFromNullHasNoBuffer) {
    const JString string(nullptr);
    EXPECT_EQ(string.chars(), nullptr);
    EXPECT_TRUE(string.equals(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(string.equals(""));
}

TEST(JString, MadeFromTheEmptyStringHasABuffer) {
    const JString string("");
    EXPECT_TRUE(string.equals(""));
    EXPECT_FALSE(string.equals(static_cast<const char*>(nullptr)));
    EXPECT_EQ(string.length(), 0U);
}

TEST(JString, MadeWithAnIdentityHasItAndNoBuffer) {
    const JString string(JHashCode(1, 2, 3, 4));
    JHashCode identity;
    EXPECT_EQ(string.getHashCode(identity), JHashCode(1, 2, 3, 4));
    EXPECT_EQ(string.chars(), nullptr);
}

TEST(JString, TakesARangeOfCharacters) {
    EXPECT_STREQ(JString("abcdef", 2, 3).chars(), "cde");
    EXPECT_STREQ(JString("abcdef", 6, 0).chars(), "");
}

TEST(JString, ARangeMayHoldNulsAndLengthEndsAtTheFirst) {
    const JString string("ab\0cd", 0, 5);
    EXPECT_EQ(string.length(), 2U);
    EXPECT_EQ(std::string(string.chars(), 6), std::string("ab\0cd\0", 6));
}

TEST(JString, TakesARangeOfAPool) {
    MemoryPool pool(2, 2);
    pool.write(0, "abcdef", 6);
    EXPECT_STREQ(JString(pool, 1, 4).chars(), "bcde");
    EXPECT_STREQ(JString(pool, 6, 0).chars(), "");
}

TEST(JString, ARangeOutsideThePoolThrowsAndLeaksNothing) {
    const MemoryPool pool(4, 4);
    EXPECT_EQ(thrownMessage<JIOException>([&] { const JString string(pool, 2, 3); }),
              "MemoryPool read: out of bounds.");
}

TEST(JString, EqualsComparesBytesUpToTheEnd) {
    const JString string("abc");
    EXPECT_TRUE(string.equals("abc"));
    EXPECT_FALSE(string.equals("ab"));
    EXPECT_FALSE(string.equals("abcd"));
    EXPECT_FALSE(string.equals("aBc"));
    EXPECT_FALSE(string.equals(""));
}

TEST(JString, EqualsTellsHighBytesApart) {
    EXPECT_TRUE(JString("\xFF\x80").equals("\xFF\x80"));
    EXPECT_FALSE(JString("\xFF").equals("\x7F"));
}

TEST(JString, AsObjectsEqualTextsAreDifferent) {
    const JString first("abc");
    const JString second("abc");
    EXPECT_FALSE(first.equals(&second));
    EXPECT_TRUE(first.equals(&first));
}

TEST(JString, GetCharAnswersEveryCharacter) {
    const JString string("a\xFF");
    EXPECT_EQ(string.getChar(0), 'a');
    EXPECT_EQ(string.getChar(1), '\xFF');
}

TEST(JString, GetCharAtTheLengthThrows) {
    const JString string("abc");
    EXPECT_EQ(string.getChar(2), 'c');
    EXPECT_EQ(thrownMessage<JArrayIndexOutOfBoundsException>([&] { string.getChar(3); }),
              "JString::getChar: index too large");
    EXPECT_EQ(thrownMessage<JArrayIndexOutOfBoundsException>([&] { string.getChar(INT32_MAX); }),
              "JString::getChar: index too large");
    EXPECT_EQ(thrownMessage<JArrayIndexOutOfBoundsException>([] { JString("").getChar(0); }),
              "JString::getChar: index too large");
}

TEST(JString, ANegativeIndexIsNotRefusedAndAnswersNul) {
    EXPECT_EQ(JString("abc").getChar(-1), '\0');
    EXPECT_EQ(JString("").getChar(INT32_MIN), '\0');
}

TEST(JString, SubstringTakesFromBeginToBeforeEnd) {
    const JString string("abcdef");
    const JPointer<JString> part(string.substring(1, 4));
    EXPECT_EQ(textOf(part), "bcd");
    EXPECT_EQ(part->getRefCount(), 1);
}

TEST(JString, SubstringOfNoCharactersIsEmpty) {
    EXPECT_EQ(textOf(JPointer<JString>(JString("abc").substring(2, 2))), "");
}

TEST(JString, SubstringFromTheStartIsACopy) {
    const JString string("abc");
    EXPECT_EQ(textOf(JPointer<JString>(string.substring(0))), "abc");
    EXPECT_EQ(textOf(JPointer<JString>(string.substring(2))), "c");
    EXPECT_EQ(textOf(JPointer<JString>(string.substring(3))), "");
}

TEST(JString, SubstringIsNullWhenTheObjectCannotBeAllocated) {
    const JString string("abc");
    const FailingAllocation failing(0);
    EXPECT_EQ(string.substring(1), nullptr);
}

TEST(JString, SubstringThrowsWhenItsTextCannotBeAllocated) {
    const JString string("abc");
    const FailingAllocation failing(1);
    EXPECT_EQ(thrownMessage<JOutOfMemoryException>([&] { string.substring(1); }), noMemory);
}

TEST(JString, AppendsACharacter) {
    JString string("ab");
    string.append('c');
    string.append('\xFF');
    EXPECT_STREQ(string.chars(), "abc\xFF");
}

TEST(JString, AppendsText) {
    JString string("ab");
    string.append("cd");
    EXPECT_STREQ(string.chars(), "abcd");
    string.append(static_cast<const char*>(nullptr));
    EXPECT_STREQ(string.chars(), "abcd");
}

TEST(JString, AppendsAnotherString) {
    JString string("ab");
    string.append(JString("cd"));
    string.append(JString(nullptr));
    EXPECT_STREQ(string.chars(), "abcd");
}

TEST(JString, AppendsItself) {
    JString string("ab");
    string.append(string);
    string.append(string.chars() + 3);
    EXPECT_STREQ(string.chars(), "ababb");
}

TEST(JString, AppendingNothingReplacesTheBuffer) {
    JString string("abc");
    const char* before = string.chars();
    string.append("");
    EXPECT_STREQ(string.chars(), "abc");
    EXPECT_NE(string.chars(), before);
}

TEST(JString, AssignmentTakesACopy) {
    char text[] = "xyz";
    JString string("abc");
    string = text;
    text[0] = '?';
    EXPECT_STREQ(string.chars(), "xyz");
    string = "";
    EXPECT_TRUE(string.equals(""));
}

TEST(JString, AssigningNullLeavesTheText) {
    JString string("abc");
    string = nullptr;
    EXPECT_STREQ(string.chars(), "abc");
}

TEST(JString, AssigningItsOwnCharactersIsSafe) {
    JString string("abc");
    string = string.chars() + 1;
    EXPECT_STREQ(string.chars(), "bc");
}

TEST(JString, AStringWithoutABufferTakesTextByAssignment) {
    JString string(nullptr);
    string = "abc";
    EXPECT_STREQ(string.chars(), "abc");
}

TEST(JString, WithoutABufferBehavesAsTheEmptyString) {
    const JString none(nullptr);
    EXPECT_EQ(none.length(), 0U);
    EXPECT_EQ(textOf(JPointer<JString>(none.substring(0))), "");
    EXPECT_EQ(textOf(JPointer<JString>(none.substring(0, 0))), "");
    EXPECT_EQ(thrownMessage<JArrayIndexOutOfBoundsException>([&] { none.getChar(0); }),
              "JString::getChar: index too large");
}

TEST(JString, WithoutABufferTakesWhatIsAppended) {
    JString character(nullptr);
    character.append('a');
    EXPECT_STREQ(character.chars(), "a");
    JString text(nullptr);
    text.append("ab");
    EXPECT_STREQ(text.chars(), "ab");
}

TEST(JString, EveryConstructorThrowsWithoutMemory) {
    const MemoryPool pool(4, 4);
    EXPECT_EQ(messageWithoutMemory([] { const JString string("abc"); }), noMemory);
    EXPECT_EQ(messageWithoutMemory([] { const JString string("abc", 0, 2); }), noMemory);
    EXPECT_EQ(messageWithoutMemory([&] { const JString string(pool, 0, 2); }), noMemory);
}

TEST(JString, AFailedAppendThrowsAndLeavesTheText) {
    JString string("abc");
    EXPECT_EQ(messageWithoutMemory([&] { string.append('d'); }), noMemory);
    EXPECT_EQ(messageWithoutMemory([&] { string.append("def"); }), noMemory);
    EXPECT_EQ(messageWithoutMemory([&] { string.append(string); }), noMemory);
    EXPECT_STREQ(string.chars(), "abc");
}

TEST(JString, AFailedAssignmentIsSilentAndLeavesNoBuffer) {
    JString string("abc");
    const FailingAllocation failing(0);
    string = "def";
    EXPECT_EQ(string.chars(), nullptr);
}

TEST(JString, CarriesTheMarkOfAQuotedWord) {
    JString string("abc");
    EXPECT_FALSE(string.isQuoted());
    string.setQuoted(true);
    EXPECT_TRUE(string.isQuoted());
    string.setQuoted(false);
    EXPECT_FALSE(string.isQuoted());
}

} // namespace
