// Index lists, checked structs and descriptors as text.
#include "meta/MetaKel_Impl.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "values/KEL_IndexList_Impl.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string sample = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
const std::string other = "00000000-0000-0000-0000-0000000000FF";

JPointer<KEL_Array_Impl> asElements(const HeldValue& array) {
    return JPointer<KEL_Array_Impl>::share(dynamic_cast<KEL_Array_Impl*>(array.get()));
}

HeldValue listOf(const HeldValue& keys, const HeldValue& items) {
    return HeldValue(new KEL_IndexList_Impl(asElements(keys), asElements(items)));
}

/// A meta value of class T with one variable, x.
template <class T> Held<T> metaOf(int32_t x) {
    auto made = make<T>();
    made->inner().putInt("x", x);
    return made;
}

template <class T> const T& as(const HeldValue& value) { return dynamic_cast<const T&>(*value); }

// ---- Index lists, written ----------------------------------------------------------------------

TEST(TextIndexList, HasItsKeysAndItsItemsAsArrays) {
    EXPECT_EQ(textOf(listOf(arrayOf(stringOf("one")), arrayOf(intOf(1)))), "<\n"
                                                                        "\t/* keys: */ \n"
                                                                        "\t[\n"
                                                                        "\t\t\"one\"\n"
                                                                        "\t]\n"
                                                                        "\t/* values: */ \n"
                                                                        "\t[\n"
                                                                        "\t\t1\n"
                                                                        "\t]\n"
                                                                        ">\n");
}

TEST(TextIndexList, ItsClosingBracketStandsAtTheStartOfItsLineAtEveryDepth) {
    const auto list = listOf(arrayOf(), arrayOf());
    EXPECT_EQ(textOf(arrayOf(structOf("list", list))), "[\n"
                                                       "\t{\n"
                                                       "\t\tlist = <\n"
                                                       "\t\t\t/* keys: */ \n"
                                                       "\t\t\t[\n"
                                                       "\t\t\t]\n"
                                                       "\t\t\t/* values: */ \n"
                                                       "\t\t\t[\n"
                                                       "\t\t\t]\n"
                                                       ">\n"
                                                       "\t}\n"
                                                       "]\n");
}

TEST(TextIndexList, AsAnElementItBeginsALine) {
    const std::string text = textOf(arrayOf(listOf(arrayOf(), arrayOf())));
    EXPECT_EQ(text.substr(0, 5), "[\n\t<\n");
}

TEST(TextIndexList, OnlyPairsAreWritten) {
    const auto list = listOf(arrayOf(intOf(1), intOf(2), intOf(3)), arrayOf(intOf(4)));
    EXPECT_EQ(rewritten(textOf(list)), textOf(list));
    EXPECT_EQ(as<KEL_IndexList>(read(textOf(list))).getCount(), 1);
}

TEST(TextIndexList, InsideItselfItIsRefused) {
    const auto items = arrayOf();
    const TakeApart atEnd(items.get());
    const auto list = listOf(arrayOf(intOf(1)), items);
    asArray(items).addVar(list.get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { textOf(list); }),
              "Cannot write a value that contains itself.");
}

// ---- Index lists, read -------------------------------------------------------------------------

TEST(TextIndexList, IsReadBack) {
    const auto list = read("< [ \"a\" 2 ] [ 1 { } ] >");
    ASSERT_EQ(list->getType(), KELKind_IndexList);
    EXPECT_EQ(as<KEL_IndexList>(list).getCount(), 2);
    EXPECT_STREQ(as<KEL_IndexList>(list).getKeyAt(0)->toString(), "a");
    EXPECT_EQ(as<KEL_IndexList>(list).getItemAt(1)->getType(), KELKind_Struct);
}

TEST(TextIndexList, TakesAnIdentity) {
    EXPECT_EQ(identityOf(read(sample + " = < [ ] [ ] >")), sample);
}

TEST(TextIndexList, ItsArraysMayHaveIdentitiesOrBeReferences) {
    const auto list = read("< " + sample + " = [ 1 ] REF " + sample + " >");
    EXPECT_EQ(as<KEL_IndexList>(list).getKeyAt(0), as<KEL_IndexList>(list).getItemAt(0));
}

TEST(TextIndexList, ArraysOfDifferentLengthAreASyntaxError) {
    EXPECT_EQ(refusalOf("< [ 1 ] [ ] >"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("< [ ]\n[ 1 ] >"), syntaxErrorAt(2));
}

TEST(TextIndexList, AnythingButTwoArraysIsASyntaxError) {
    for (const char* text : {"< >", "< [ ] >", "< [ ] [ ] [ ] >", "< 1 [ ] >", "< [ ] { } >",
                             "< [ ] null >", "< null [ ] >", "< [ ] ]"}) {
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(1)) << text;
    }
}

TEST(TextIndexList, EndOfInputInsideIt) {
    EXPECT_EQ(endingOf("<"), endAt(1));
    EXPECT_EQ(endingOf("< [ 1 ]\n"), endAt(2));
    EXPECT_EQ(endingOf("< [ ] [ ]"), endAt(1));
}

// ---- Checked structs and descriptors, written --------------------------------------------------

TEST(TextMeta, ACheckedStructNamesItsKindAndIsFollowedByAnEmptyLine) {
    EXPECT_EQ(textOf(metaOf<MetaKel_Impl>(1)), "{ @type = 50\n\tx = 1\n}\n\n");
    EXPECT_EQ(textOf(metaOf<MetaKelVarDescriptor_Impl>(1)), "{ @type = 52\n\tx = 1\n}\n\n");
}

TEST(TextMeta, ADescriptorAlsoNamesTheIdentityOfItsStruct) {
    const auto descriptor = make<MetaKelDescriptor_Impl>(codeOf(1), codeOf(0xFF));
    EXPECT_EQ(textOf(descriptor), "{ @type = 51, @hashCode = " + other + "\n}\n\n");
}

TEST(TextMeta, AtTheStartOfALineTheIndentationIsWrittenTwice) {
    const auto descriptor = make<MetaKelDescriptor_Impl>(codeOf(0xFF));
    EXPECT_EQ(textOf(arrayOf(descriptor.get())),
              "[\n\t\t{ @type = 51, @hashCode = " + other + "\n\t}\n\n]\n");
    EXPECT_EQ(textOf(arrayOf(arrayOf(metaOf<MetaKel_Impl>(1).get()))),
              "[\n\t[\n\t\t\t\t{ @type = 50\n\t\t\tx = 1\n\t\t}\n\n\t]\n]\n");
}

TEST(TextMeta, ContinuingALineItIsNotIndented) {
    EXPECT_EQ(textOf(structOf("m", metaOf<MetaKel_Impl>(1).get())),
              "{\n\tm = { @type = 50\n\t\tx = 1\n\t}\n\n}\n");
}

TEST(TextMeta, InsideItselfItIsRefused) {
    const auto meta = metaOf<MetaKel_Impl>(1);
    meta->inner().addVar("again", meta.get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { textOf(meta); }),
              "Cannot write a value that contains itself.");
    meta->removeAllVars();
}

// ---- Checked structs and descriptors, read -----------------------------------------------------

TEST(TextMeta, TheHeaderTellsTheKind) {
    EXPECT_EQ(read("{ @type = 50\n}")->getType(), KELKind_MetaKel);
    EXPECT_EQ(read("{ @type = 51\n}")->getType(), KELKind_MetaKelDescriptor);
    EXPECT_EQ(read("{ @type = 52\n}")->getType(), KELKind_MetaKelVarDescriptor);
    EXPECT_EQ(read("{ @type = 8\n}")->getType(), KELKind_Struct);
}

TEST(TextMeta, OtherKindsInAHeaderAreSyntaxErrors) {
    for (const char* kind : {"0", "7", "9", "12", "49", "53", "-50", "5.0"}) {
        EXPECT_EQ(refusalOf(std::string("{ @type = ") + kind + "\n}"), syntaxErrorAt(1)) << kind;
    }
}

TEST(TextMeta, WhatIsWrittenIsReadBack) {
    const std::string text = "{ @type = 50\n"
                             "\t@desc = { @type = 51, @hashCode = " + sample + "\n"
                             "\t\tlevel = { @type = 52\n"
                             "\t\t\tmax = 10\n"
                             "\t\t\tmin = 0\n"
                             "\t\t\ttype = 1\n"
                             "\t\t}\n"
                             "\n"
                             "\t}\n"
                             "\n"
                             "\tlevel = 3\n"
                             "}\n"
                             "\n";
    EXPECT_EQ(rewritten(text), text);
}

TEST(TextMeta, ItsMembersAreReadUnchecked) {
    const auto meta = read("{ @type = 50\n@desc = { @type = 51\nlevel = { @type = 52\ntype = 1\n"
                           "min = 0\nmax = 10\n} }\nlevel = 11\n\"@x\" = 1 }");
    EXPECT_EQ(as<MetaKel>(meta).getInt("level"), 11);
    EXPECT_EQ(as<MetaKel>(meta).getInt("@x"), 1);
    EXPECT_NE(as<MetaKel>(meta).getDescriptor(), nullptr);
}

std::string identities(const std::string& text) {
    const auto value = read(text);
    return identityOf(value) + " over " +
           identityOf(&dynamic_cast<const kel::StructHolder&>(*value).inner());
}

TEST(TextMeta, AnIdentityInItsHeaderIsItsOwnAndItsStructs) {
    EXPECT_EQ(identities("{ @type = 51, @hashCode = " + sample + "\n}"), sample + " over " + sample);
    EXPECT_EQ(identities("{ @type = 50, @hashCode = " + sample + "\n}"), sample + " over " + sample);
}

TEST(TextMeta, AnIdentityInFrontOfTheBraceIsTheValuesOneInTheHeaderTheStructs) {
    EXPECT_EQ(identities(other + " = { @type = 51, @hashCode = " + sample + "\n}"),
              other + " over " + sample);
    EXPECT_EQ(identities(other + " = { @type = 52\n}"), other + " over " + other);
}

TEST(TextMeta, InAManagerItKeepsBothIdentities) {
    const std::string text = "(\n\t" + other + " = { @type = 51, @hashCode = " + sample +
                             "\n\t}\n\n)\n";
    EXPECT_EQ(rewritten(text), text);
}

} // namespace
