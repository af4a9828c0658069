// References in text: the values that "REF" can refer to.
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string sample = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
const std::string decimal = "12345678-4F89-11D3-9A0C-0305E82C3301"; // a number to the tokenizer
const std::string letters = "ABCDEFAB-CDEF-ABCD-EFAB-CDEFABCDEFAB"; // a word to the tokenizer
const std::string allDigits = "12345678-1234-1234-1234-123456789012";
const std::string other = "00000000-0000-0000-0000-0000000000FF";

TEST(TextReference, IsTheVeryValueThatWasRead) {
    for (const char* word : {"REF", "ref"}) {
        const auto array = read("[ " + sample + " = 5 " + word + " " + sample + " ]");
        ASSERT_EQ(asArray(array).getCount(), 2);
        EXPECT_EQ(at(array, 0), at(array, 1));
    }
}

TEST(TextReference, EveryFormOfHashCodeCanStandThere) {
    for (const std::string& code : {decimal, letters, allDigits}) {
        const auto array = read("[ " + code + " = 5 REF " + code + " ]");
        EXPECT_EQ(at(array, 0), at(array, 1)) << code;
    }
}

TEST(TextReference, ReachesContainersEntriesAndHeaders) {
    const auto array = read("[ ( " + sample + " = 1 ) { @hashCode = " + other + "\n} " + decimal +
                            " = [ ] REF " + sample + " REF " + other + " REF " + decimal + " ]");
    EXPECT_EQ(at(array, 3)->toInt(), 1);
    EXPECT_EQ(at(array, 4), at(array, 1));
    EXPECT_EQ(at(array, 5), at(array, 2));
}

TEST(TextReference, ReachesEarlierRootsOfTheStream) {
    TextInput input(sample + " = 5\n[ REF " + sample + " ]");
    const auto first = input.read();
    EXPECT_EQ(at(input.read(), 0), first.get());
}

TEST(TextReference, ARootMayBeOne) {
    TextInput input(sample + " = 5\nREF " + sample);
    const auto first = input.read();
    EXPECT_EQ(input.read().get(), first.get());
}

TEST(TextReference, OfTwoValuesWithOneIdentityTheLastIsMeant) {
    const auto array = read("[ " + sample + " = 1 " + sample + " = 2 REF " + sample + " ]");
    EXPECT_EQ(at(array, 2), at(array, 1));
}

TEST(TextReference, AnUnknownIdentityIsASyntaxError) {
    EXPECT_EQ(refusalOf("[\nREF " + sample + " ]"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("REF 00000000-0000-0000-0000-000000000000"), syntaxErrorAt(1));
}

TEST(TextReference, AGuidValueIsNoIdentity) {
    EXPECT_EQ(refusalOf("[ " + sample + "\nREF " + sample + " ]"), syntaxErrorAt(2));
}

TEST(TextReference, AValueThatIsNotReadToItsEndIsUnknown) {
    EXPECT_EQ(refusalOf(sample + " = [ REF " + sample + " ]"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @hashCode = " + sample + "\n a = REF " + sample + " }"),
              syntaxErrorAt(2));
}

TEST(TextReference, ReachesWhatAFailedReadHasCompleted) {
    TextInput input("[ " + sample + " = [ 5 ] " + other + " = [ 6 ? REF " + sample + "\nREF " +
                    other);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(1));
    EXPECT_EQ(textOf(input.read()), "[\n\t5\n]\n");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(2))
        << "the container that was wrong is not complete";
}

TEST(TextReference, ReachesOnlyCompleteValuesAfterAFailure) {
    const std::string cuts[] = {" = [ 1 ?", " = { a = 1 ?", " = { @hashCode = " + sample + " ?",
                                " = < [ ] ?", " = ( ?"};
    for (const std::string& cut : cuts) {
        TextInput input(other + cut + "\nREF " + other + " REF " + sample);
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(1)) << cut;
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(2)) << cut;
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(2)) << cut;
    }
}

TEST(TextReference, NeedsAHashCode) {
    EXPECT_EQ(refusalOf("[ REF 5 ]"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("[ REF ]"), syntaxErrorAt(1));
    EXPECT_EQ(endingOf("[ REF "), endAt(1));
}

TEST(TextReference, AnIdentityInFrontOfItIsTheValuesOwn) {
    const auto array = read("[ " + sample + " = 5 " + sample + " = REF " + sample + " ]");
    EXPECT_EQ(at(array, 0), at(array, 1));
    EXPECT_EQ(refusalOf("[ " + sample + " = 5 " + other + " = REF " + sample + " ]"),
              syntaxErrorAt(1));
}

TEST(TextReference, MayBeAManagersEntryUnderTheValuesIdentity) {
    TextInput input(sample + " = [ 5 ]\n( " + other + " = 6 " + sample + " = REF " + sample +
                    " )\n( " + other + " = REF " + sample + " )");
    const auto value = input.read();
    const auto manager = input.read();
    ASSERT_EQ(asManager(manager).size(), 2);
    EXPECT_EQ(asManager(manager).getKelAt(1), value.get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(3));
}

TEST(TextReference, MayRepeatAnEntryInItsManager) {
    EXPECT_EQ(
        rewritten("( " + sample + " = 5 " + other + " = 6 " + sample + " = REF " + sample + " )"),
        "(\n\t" + sample + " = 5\n\t" + other + " = 6\n)\n");
}

TEST(TextReference, FindsAStructByTheIdentityInFrontAndByThatOfItsHeader) {
    for (const char* header : {"", "@type = 8, ", "@type = 50, ", "@type = 51, ", "@type = 52, "}) {
        TextInput input(sample + " = { " + header + "@hashCode = " + other + " }\nREF " + sample +
                        " REF " + other);
        const auto value = input.read();
        EXPECT_EQ(identityOf(value), sample);
        EXPECT_EQ(input.read().get(), value.get()) << header;
        EXPECT_EQ(input.read().get(), value.get()) << header;
    }
}

TEST(TextReference, ToAHeadersIdentityIsListedUnderTheValuesOwn) {
    const std::string both = sample + " = { @type = 51, @hashCode = " + other + " }\n";
    const auto list = [&](const std::string& identity) {
        TextInput input(both + "( " + identity + " = REF " + other + " )");
        const auto descriptor = input.read();
        return textOf(input.read());
    };
    EXPECT_EQ(list(sample).substr(0, 6 + sample.size()), "(\n\t" + sample + " = ");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { list(other); }), syntaxErrorAt(2));
}

TEST(TextReference, TheZeroIdentityIsOneLikeOthers) {
    const std::string zero = "00000000-0000-0000-0000-000000000000";
    const auto array = read("[ " + zero + " = 1 REF " + zero + " ( " + zero + " = 2 ) REF " + zero +
                            " { @hashCode = " + zero + " } REF " + zero + " ]");
    EXPECT_EQ(at(array, 1), at(array, 0));
    EXPECT_EQ(at(array, 3)->toInt(), 2);
    EXPECT_EQ(at(array, 5), at(array, 4));
}

} // namespace
