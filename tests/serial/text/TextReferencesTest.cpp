// References in text: the values that "REF" can refer to.
#include "support/SampleGuids.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

TEST(TextReference, IsTheVeryValueThatWasRead) {
    for (const char* word : {"REF", "ref"}) {
        const auto array = read("[ " + sampleGuid + " = 5 " + word + " " + sampleGuid + " ]");
        ASSERT_EQ(asArray(array).getCount(), 2);
        EXPECT_EQ(at(array, 0), at(array, 1));
    }
}

TEST(TextReference, EveryFormOfHashCodeCanStandThere) {
    for (const std::string& code : {decimalGuid, letterGuid, digitGuid}) {
        const auto array = read("[ " + code + " = 5 REF " + code + " ]");
        EXPECT_EQ(at(array, 0), at(array, 1)) << code;
    }
}

TEST(TextReference, ReachesContainersEntriesAndHeaders) {
    const auto array =
        read("[ ( " + sampleGuid + " = 1 ) { @hashCode = " + otherGuid + "\n} " + decimalGuid +
             " = [ ] REF " + sampleGuid + " REF " + otherGuid + " REF " + decimalGuid + " ]");
    EXPECT_EQ(at(array, 3)->toInt(), 1);
    EXPECT_EQ(at(array, 4), at(array, 1));
    EXPECT_EQ(at(array, 5), at(array, 2));
}

TEST(TextReference, ReachesEarlierRootsOfTheStream) {
    TextInput input(sampleGuid + " = 5\n[ REF " + sampleGuid + " ]");
    const auto first = input.read();
    EXPECT_EQ(at(input.read(), 0), first.get());
}

TEST(TextReference, ARootMayBeOne) {
    TextInput input(sampleGuid + " = 5\nREF " + sampleGuid);
    const auto first = input.read();
    EXPECT_EQ(input.read().get(), first.get());
}

TEST(TextReference, OfTwoValuesWithOneIdentityTheLastIsMeant) {
    const auto array =
        read("[ " + sampleGuid + " = 1 " + sampleGuid + " = 2 REF " + sampleGuid + " ]");
    EXPECT_EQ(at(array, 2), at(array, 1));
}

TEST(TextReference, AnUnknownIdentityIsASyntaxError) {
    EXPECT_EQ(refusalOf("[\nREF " + sampleGuid + " ]"), syntaxErrorAt(2));
    EXPECT_EQ(refusalOf("REF 00000000-0000-0000-0000-000000000000"), syntaxErrorAt(1));
}

TEST(TextReference, AGuidValueIsNoIdentity) {
    EXPECT_EQ(refusalOf("[ " + sampleGuid + "\nREF " + sampleGuid + " ]"), syntaxErrorAt(2));
}

TEST(TextReference, AValueThatIsNotReadToItsEndIsUnknown) {
    EXPECT_EQ(refusalOf(sampleGuid + " = [ REF " + sampleGuid + " ]"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @hashCode = " + sampleGuid + "\n a = REF " + sampleGuid + " }"),
              syntaxErrorAt(2));
}

TEST(TextReference, ReachesWhatAFailedReadHasCompleted) {
    TextInput input("[ " + sampleGuid + " = [ 5 ] " + otherGuid + " = [ 6 ? REF " + sampleGuid +
                    "\nREF " + otherGuid);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(1));
    EXPECT_EQ(textOf(input.read()), "[\n\t5\n]\n");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(2))
        << "the container that was wrong is not complete";
}

TEST(TextReference, ReachesOnlyCompleteValuesAfterAFailure) {
    const std::string cuts[] = {" = [ 1 ?", " = { a = 1 ?", " = { @hashCode = " + sampleGuid + " ?",
                                " = < [ ] ?", " = ( ?"};
    for (const std::string& cut : cuts) {
        TextInput input(otherGuid + cut + "\nREF " + otherGuid + " REF " + sampleGuid);
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
    const auto array =
        read("[ " + sampleGuid + " = 5 " + sampleGuid + " = REF " + sampleGuid + " ]");
    EXPECT_EQ(at(array, 0), at(array, 1));
    EXPECT_EQ(refusalOf("[ " + sampleGuid + " = 5 " + otherGuid + " = REF " + sampleGuid + " ]"),
              syntaxErrorAt(1));
}

TEST(TextReference, MayBeAManagersEntryUnderTheValuesIdentity) {
    TextInput input(sampleGuid + " = [ 5 ]\n( " + otherGuid + " = 6 " + sampleGuid + " = REF " +
                    sampleGuid + " )\n( " + otherGuid + " = REF " + sampleGuid + " )");
    const auto value = input.read();
    const auto manager = input.read();
    ASSERT_EQ(asManager(manager).size(), 2);
    EXPECT_EQ(asManager(manager).getKelAt(1), value.get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), syntaxErrorAt(3));
}

TEST(TextReference, MayRepeatAnEntryInItsManager) {
    EXPECT_EQ(rewritten("( " + sampleGuid + " = 5 " + otherGuid + " = 6 " + sampleGuid + " = REF " +
                        sampleGuid + " )"),
              "(\n\t" + sampleGuid + " = 5\n\t" + otherGuid + " = 6\n)\n");
}

TEST(TextReference, FindsAStructByTheIdentityInFrontAndByThatOfItsHeader) {
    for (const char* header : {"", "@type = 8, ", "@type = 50, ", "@type = 51, ", "@type = 52, "}) {
        TextInput input(sampleGuid + " = { " + header + "@hashCode = " + otherGuid + " }\nREF " +
                        sampleGuid + " REF " + otherGuid);
        const auto value = input.read();
        EXPECT_EQ(identityOf(value), sampleGuid);
        EXPECT_EQ(input.read().get(), value.get()) << header;
        EXPECT_EQ(input.read().get(), value.get()) << header;
    }
}

TEST(TextReference, ToAHeadersIdentityIsListedUnderTheValuesOwn) {
    const std::string both = sampleGuid + " = { @type = 51, @hashCode = " + otherGuid + " }\n";
    const auto list = [&](const std::string& identity) {
        TextInput input(both + "( " + identity + " = REF " + otherGuid + " )");
        const auto descriptor = input.read();
        return textOf(input.read());
    };
    EXPECT_EQ(list(sampleGuid).substr(0, 6 + sampleGuid.size()), "(\n\t" + sampleGuid + " = ");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { list(otherGuid); }), syntaxErrorAt(2));
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
