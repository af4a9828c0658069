#include "support/AllocationFailure.h"
#include "support/Held.h"
#include "support/Thrown.h"
#include "values/StringEnumeration_Impl.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <kel/KELException.h>
#include <random>
#include <string>
#include <vector>

namespace {

using kel::test::Held;
using kel::test::make;
using kel::test::thrownMessage;
using HeldNames = Held<StringEnumeration_Impl>;

HeldNames enumerationOf(std::initializer_list<const char*> texts) {
    HeldNames names = make<StringEnumeration_Impl>();
    for (const char* text : texts) {
        names->add(text);
    }
    return names;
}

/// Returns the names from the cursor to the end.
std::vector<std::string> rest(StringEnumeration& names) {
    std::vector<std::string> texts;
    while (names.hasMoreElements()) {
        texts.emplace_back(names.nextElement());
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(StringEnumeration, IsEmptyAtFirst) {
    const HeldNames names = enumerationOf({});
    EXPECT_FALSE(names->hasMoreElements());
    EXPECT_EQ(names->getCount(), 0);
    EXPECT_FALSE(names->contains("a"));
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { names->nextElement(); }),
              "Enumeration is empty.");
}

TEST(StringEnumeration, EmptyRaisesThroughTheRuntimesInterfaceToo) {
    const HeldNames names = enumerationOf({});
    const JEnumeration& walk = *names;
    EXPECT_EQ(thrownMessage<KELNoSuchElementException>([&] { walk.nextElement(); }),
              "Enumeration is empty.");
}

TEST(StringEnumeration, KeepsTheOrderOfAddition) {
    EXPECT_EQ(rest(*enumerationOf({"b", "a", "c"})), (Texts{"b", "a", "c"}));
}

TEST(StringEnumeration, TheSameTextIsKeptOnce) {
    const HeldNames names = enumerationOf({"a", "b", "a"});
    EXPECT_EQ(names->getCount(), 2);
    EXPECT_EQ(rest(*names), (Texts{"a", "b"}));
}

TEST(StringEnumeration, AnotherLetterCaseIsAnotherText) {
    EXPECT_EQ(rest(*enumerationOf({"a", "A"})), (Texts{"a", "A"}));
}

TEST(StringEnumeration, TheEmptyTextIsAText) {
    const HeldNames names = enumerationOf({""});
    EXPECT_EQ(names->getCount(), 1);
    EXPECT_TRUE(names->contains(""));
}

TEST(StringEnumeration, NullIsIgnored) {
    const HeldNames names = enumerationOf({"a"});
    names->add(nullptr);
    names->remove(nullptr);
    names->addAll(nullptr);
    EXPECT_FALSE(names->contains(nullptr));
    EXPECT_EQ(names->getCount(), 1);
}

TEST(StringEnumeration, HoldsCopies) {
    char text[] = "abc";
    const HeldNames names = enumerationOf({text});
    text[0] = '?';
    EXPECT_TRUE(names->contains("abc"));
}

TEST(StringEnumeration, TheTextStaysWhileTheListLives) {
    const HeldNames names = enumerationOf({"a"});
    const char* text = names->nextElement();
    for (int i = 0; i < 100; ++i) {
        names->add(std::to_string(i).c_str());
    }
    EXPECT_STREQ(text, "a");
}

TEST(StringEnumeration, PastTheLastTextTheAnswerIsNull) {
    const HeldNames names = enumerationOf({"a"});
    names->nextElement();
    EXPECT_EQ(names->nextElement(), nullptr);
    const JEnumeration& walk = *names;
    EXPECT_EQ(walk.nextElement(), nullptr);
}

TEST(StringEnumeration, ResetStartsOver) {
    const HeldNames names = enumerationOf({"a", "b"});
    rest(*names);
    names->reset();
    EXPECT_EQ(rest(*names), (Texts{"a", "b"}));
}

TEST(StringEnumeration, ContainsComparesWholeTexts) {
    const HeldNames names = enumerationOf({"abc"});
    EXPECT_TRUE(names->contains("abc"));
    EXPECT_FALSE(names->contains("ab"));
    EXPECT_FALSE(names->contains("ABC"));
}

TEST(StringEnumeration, AddAllAddsWhatIsMissingAndResetsTheOther) {
    const HeldNames names = enumerationOf({"a", "b"});
    const HeldNames other = enumerationOf({"c", "b", "d"});
    other->nextElement();
    names->addAll(other.get());
    EXPECT_EQ(rest(*names), (Texts{"a", "b", "c", "d"}));
    EXPECT_EQ(rest(*other), (Texts{"c", "b", "d"}));
}

TEST(StringEnumeration, AddAllOfItselfChangesNothingAndResets) {
    const HeldNames names = enumerationOf({"a", "b"});
    names->nextElement();
    names->addAll(names.get());
    EXPECT_EQ(names->getCount(), 2);
    EXPECT_EQ(rest(*names), (Texts{"a", "b"}));
}

TEST(StringEnumeration, RemoveTakesTheText) {
    const HeldNames names = enumerationOf({"a", "b", "c"});
    names->remove("b");
    EXPECT_EQ(rest(*names), (Texts{"a", "c"}));
}

TEST(StringEnumeration, RemoveOfAnAbsentTextChangesNothing) {
    const HeldNames names = enumerationOf({"a"});
    names->remove("b");
    EXPECT_EQ(names->getCount(), 1);
    enumerationOf({})->remove("b");
}

TEST(StringEnumeration, RemovingBeforeTheCursorSkipsTheOneAfterIt) {
    const HeldNames names = enumerationOf({"a", "b", "c", "d"});
    names->nextElement();
    names->nextElement();
    names->remove("a");
    EXPECT_EQ(rest(*names), (Texts{"d"}));
}

TEST(StringEnumeration, OnceFilledAndEmptiedItIsNotEmptyAsANewOne) {
    const HeldNames names = enumerationOf({"a"});
    names->remove("a");
    EXPECT_EQ(names->getCount(), 0);
    EXPECT_FALSE(names->hasMoreElements());
    EXPECT_EQ(names->nextElement(), nullptr);
}

TEST(StringEnumeration, IsAnEnumerationOfStrings) {
    const HeldNames names = enumerationOf({"a"});
    const JEnumeration& walk = *names;
    const JPointer<JObject> element(walk.nextElement());
    const auto* string = dynamic_cast<JString*>(element.get());
    ASSERT_NE(string, nullptr);
    EXPECT_STREQ(string->chars(), "a");
    EXPECT_EQ(string->getRefCount(), 1);
    EXPECT_FALSE(walk.hasMoreElements());
}

TEST(StringEnumeration, CountsReferencesButAnswersOne) {
    StringEnumeration* names = enumerationOf({"a"}).detach();
    names->addRef();
    EXPECT_EQ(names->getRefCount(), 1);
    EXPECT_EQ(names->release(), 1);
    EXPECT_EQ(names->release(), 0);
}

TEST(StringEnumeration, HasAnIdentityOfItsOwn) {
    JHashCode first;
    JHashCode second;
    EXPECT_NE(enumerationOf({})->getHashCode(first), enumerationOf({})->getHashCode(second));
}

TEST(StringEnumeration, EveryAllocationMayFail) {
    HeldNames names = enumerationOf({"a"});
    const auto add = [&] {
        for (const char* text : {"b", "c", "d", "e", "f", "g"}) {
            names->add(text);
        }
    };
    const auto expectWhole = [&] {
        names->reset();
        for (const std::string& text : rest(*names)) {
            EXPECT_EQ(text.size(), 1U);
            names->remove(text == "a" ? nullptr : text.c_str());
        }
        EXPECT_TRUE(names->contains("a"));
        names = enumerationOf({"a"}); // the room that was made is gone
    };
    EXPECT_GE(kel::test::failEachAllocation(add, expectWhole), 3U);
}

TEST(StringEnumeration, AStringThatCannotBeMadeIsReturnedLater) {
    const HeldNames names = enumerationOf({"a"});
    const JEnumeration& walk = *names;
    std::vector<std::string> texts;
    const auto next = [&] {
        names->reset();
        const JPointer<JObject> element(walk.nextElement());
        texts.emplace_back(dynamic_cast<JString&>(*element).chars());
    };
    const auto expectCursorToStay = [&] { EXPECT_TRUE(names->getCount() == 1); };
    EXPECT_GE(kel::test::failEachAllocation(next, expectCursorToStay), 2U);
    EXPECT_EQ(texts.back(), "a");
}

TEST(StringEnumeration, AListUsedAsAQueueKeepsItsTextsInPlace) {
    const HeldNames names = enumerationOf({"first"});
    const char* first = names->nextElement();
    std::vector<const char*> texts;
    for (int i = 0; i < 3000; ++i) {
        names->add(std::to_string(i).c_str());
        texts.push_back(names->nextElement());
        if (i >= 10) {
            const std::string oldest = std::to_string(i - 10);
            ASSERT_STREQ(texts[static_cast<std::size_t>(i - 10)], oldest.c_str());
            names->remove(oldest.c_str());
            names->reset();
            while (names->getCount() > 0 && names->nextElement() != texts.back()) {
            }
        }
    }
    EXPECT_STREQ(first, "first");
    EXPECT_EQ(names->getCount(), 11);
}

TEST(StringEnumeration, AnAddedTextCanBelongToTheList) {
    const HeldNames names = enumerationOf({"a"});
    const char* text = names->nextElement();
    names->remove(text);
    names->add("b");
    EXPECT_TRUE(names->contains("b"));
    EXPECT_FALSE(names->contains("a"));
}

TEST(StringEnumeration, ALongListDoesWhatAShortOneDoes) {
    std::mt19937 random(5);
    const HeldNames names = enumerationOf({});
    Texts expected;
    for (int32_t step = 0; step < 20000; ++step) {
        const std::string text = "name " + std::to_string(random() % 400);
        const auto place = std::find(expected.begin(), expected.end(), text);
        ASSERT_EQ(names->contains(text.c_str()), place != expected.end());
        if (step % 3 == 0) {
            names->remove(text.c_str());
            if (place != expected.end()) {
                expected.erase(place);
            }
        } else {
            names->add(text.c_str());
            if (place == expected.end()) {
                expected.push_back(text);
            }
        }
    }
    const HeldNames all = enumerationOf({"name 7"});
    all->addAll(names.get());
    expected.erase(std::remove(expected.begin(), expected.end(), "name 7"), expected.end());
    expected.insert(expected.begin(), "name 7");
    EXPECT_GT(expected.size(), 100U);
    EXPECT_EQ(rest(*all), expected);
}

TEST(StringEnumeration, AnEmptiedListMakesRoomForALongText) {
    const HeldNames names = enumerationOf({"a"});
    names->remove("a");
    const std::string text(1000, 'b');
    names->add(text.c_str());
    EXPECT_EQ(rest(*names), std::vector<std::string>{text});
}

} // namespace
