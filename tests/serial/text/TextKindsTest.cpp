// Keyed lists, selectors, checked structs and descriptors in text, byte by byte, and back.
#include "support/Kinds.h"
#include "support/ValueStreams.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string id1 = "00000000-0000-0000-0000-000000000001";
const std::string id2 = "00000000-0000-0000-0000-000000000002";
const std::string id3 = "00000000-0000-0000-0000-000000000003";

/// Returns a struct descriptor of this identity, which its written header holds.
template <class... Variables>
HeldValue structDescriptorWith(uint8_t number, const Variables&... variables) {
    auto made = make<MetaKelDescriptor_Impl>(codeOf(number));
    detail::addVariables(*made, variables...);
    return HeldValue(made.detach());
}

template <class Kind> HeldValue with(uint8_t number) {
    return HeldValue(new Kind(codeOf(number)));
}

/// Writes a value, reads the text and writes the value read. Returns the text if both are the same.
std::string thereAndBack(const HeldValue& value) {
    const std::string text = textOf(value);
    EXPECT_EQ(rewritten(text), text);
    return text;
}

int lastLineOf(std::string_view text) {
    return 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

/// Returns the identity of the struct inside a value that is built on one.
std::string innerIdentityOf(const HeldValue& value) {
    return identityOf(&dynamic_cast<kel::StructHolder&>(*value).inner());
}

// ---- Index lists -------------------------------------------------------------------------------

TEST(TextIndexList, IsWrittenAsTwoArraysWithComments) {
    const auto list = listOf(arrayOf(stringOf("a"), stringOf("b")), arrayOf(intOf(1), intOf(2)));
    EXPECT_EQ(thereAndBack(list), "<\n"
                                  "\t/* keys: */ \n"
                                  "\t[\n"
                                  "\t\t\"a\"\n"
                                  "\t\t\"b\"\n"
                                  "\t]\n"
                                  "\t/* values: */ \n"
                                  "\t[\n"
                                  "\t\t1\n"
                                  "\t\t2\n"
                                  "\t]\n"
                                  ">\n");
}

TEST(TextIndexList, AnEmptyListHasTwoEmptyArrays) {
    EXPECT_EQ(thereAndBack(listOf(arrayOf(), arrayOf())),
              "<\n\t/* keys: */ \n\t[\n\t]\n\t/* values: */ \n\t[\n\t]\n>\n");
}

TEST(TextIndexList, TheAngleBracketStandsAtTheStartOfItsLineAtEveryDepth) {
    const auto empty = listOf(arrayOf(), arrayOf());
    EXPECT_EQ(thereAndBack(arrayOf(empty, intOf(1))), "[\n"
                                                      "\t<\n"
                                                      "\t\t/* keys: */ \n"
                                                      "\t\t[\n"
                                                      "\t\t]\n"
                                                      "\t\t/* values: */ \n"
                                                      "\t\t[\n"
                                                      "\t\t]\n"
                                                      ">\n"
                                                      "\t1\n"
                                                      "]\n");
    EXPECT_EQ(thereAndBack(structOf("x", structOf("list", empty))), "{\n"
                                                                    "\tx = {\n"
                                                                    "\t\tlist = <\n"
                                                                    "\t\t\t/* keys: */ \n"
                                                                    "\t\t\t[\n"
                                                                    "\t\t\t]\n"
                                                                    "\t\t\t/* values: */ \n"
                                                                    "\t\t\t[\n"
                                                                    "\t\t\t]\n"
                                                                    ">\n"
                                                                    "\t}\n"
                                                                    "}\n");
}

TEST(TextIndexList, AListInsideAListComesBack) {
    const auto inner = listOf(arrayOf(arrayOf(intOf(1))), arrayOf(structOf("x", nullptr)));
    const auto read = kel::test::read(thereAndBack(listOf(arrayOf(inner), arrayOf(intOf(5)))));
    EXPECT_TRUE(asList(read).getKeyAt(0)->equalsValue(inner.get()));
    EXPECT_EQ(asList(read).getItemAt(0)->toInt(), 5);
}

TEST(TextIndexList, OnlyPairsAreWritten) {
    const auto keys = arrayOf(intOf(1), intOf(2)), items = arrayOf(intOf(3));
    const std::string pair =
        "<\n\t/* keys: */ \n\t[\n\t\t1\n\t]\n\t/* values: */ \n\t[\n\t\t3\n\t]\n>\n";
    EXPECT_EQ(thereAndBack(listOf(keys, items)), pair);
    asArray(keys).removeVar(1);
    asArray(items).addInt(int32_t{4});
    EXPECT_EQ(thereAndBack(listOf(keys, items)), pair);
}

TEST(TextIndexList, AnEntryOfAManagerKeepsItsIdentity) {
    const auto list = with<KEL_IndexList_Impl>(1);
    EXPECT_EQ(thereAndBack(managerOf(list)), "(\n\t" + id1 +
                                                 " = <\n"
                                                 "\t\t/* keys: */ \n\t\t[\n\t\t]\n"
                                                 "\t\t/* values: */ \n\t\t[\n\t\t]\n"
                                                 ">\n"
                                                 ")\n");
}

TEST(TextIndexList, TheCommentsAreNotNeededAndOneLineIsEnough) {
    const auto list = read("<[\"a\" 2][1 {x = <[][]>}]>");
    EXPECT_EQ(textsOf(*asList(list).getKeys()), "a 2");
    EXPECT_EQ(textsOf(*asList(list).getItems()), "1 -");
    EXPECT_EQ(read(" < /* a */ [ ] // b\n [ ] // c\n > ")->getType(), KELKind_IndexList);
}

TEST(TextIndexList, ItsArraysMayHaveIdentitiesAndBeReferences) {
    const auto list = read("[" + id1 + " = [1] " + id2 + " = <REF " + id1 + " " + id3 + " = [5]>]");
    const HeldValue second(KEL_Impl::of(at(list, 1)));
    second->addRef();
    EXPECT_EQ(identityOf(second), id2);
    EXPECT_EQ(static_cast<KEL*>(asList(second).getKeys()), at(list, 0));
    EXPECT_EQ(identityOf(asList(second).getItems()), id3);
}

TEST(TextIndexList, ADefinitionMayStandForAnArray) {
    const auto list = read("#define TWO [1 2]\n<TWO TWO>");
    EXPECT_EQ(asList(list).getCount(), 2);
    EXPECT_NE(asList(list).getKeys(), asList(list).getItems());
}

TEST(TextIndexList, ArraysOfDifferentLengthsAreASyntaxError) {
    EXPECT_EQ(refusalOf("<\n[1]\n[]\n>"), syntaxErrorAt(4));
    EXPECT_EQ(refusalOf("<[1 2]\n[1 2 3]>"), syntaxErrorAt(2));
}

TEST(TextIndexList, OneArrayNoneOrThreeAreASyntaxError) {
    EXPECT_EQ(refusalOf("<>"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("<\n[]\n>"), syntaxErrorAt(3));
    EXPECT_EQ(refusalOf("<[][]\n[]>"), syntaxErrorAt(2));
}

TEST(TextIndexList, OneArrayTwiceIsASyntaxError) {
    const std::string code = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";
    EXPECT_EQ(refusalOf("<" + code + " = [ 1 ] REF " + code + ">"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("[" + code + " = [ ]\n#define A REF " + code + "\n<A A>]"),
              syntaxErrorAt(3));
}

TEST(TextIndexList, AnythingButArraysIsASyntaxError) {
    for (const char* text : {"<1 2>", "<[] {}>", "<null []>", "<[] NULL>", "<[1] \"a\">", "<([])>",
                             "<<[][]> []>", "<[][]]", "<[][]}", "<[] = []>", "<,>"}) {
        EXPECT_EQ(refusalOf(text), syntaxErrorAt(1)) << text;
    }
}

TEST(TextIndexList, AListThatEndsTooEarlyIsAnUnexpectedEnd) {
    for (const char* text : {"<", "<[", "<[1]", "<[1]\n", "<[1] [", "<[1] [2]"}) {
        EXPECT_EQ(endingOf(text), endAt(lastLineOf(text))) << text;
    }
}

TEST(TextIndexList, AClosingBracketAloneIsASyntaxError) {
    EXPECT_EQ(refusalOf(">"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("[>"), syntaxErrorAt(1));
}

TEST(TextIndexList, AGuidBeforeTheBracketOfAnArrayIsAGuid) {
    EXPECT_EQ(refusalOf("<[] " + id1 + ">"), syntaxErrorAt(1)); // and a guid is not an array
    EXPECT_EQ(textsOf(*asList(read("<[1][" + id1 + "]>")).getItems()), id1);
}

// ---- Selectors ---------------------------------------------------------------------------------

TEST(TextSelector, ASelectorAnywhereAbortsTheWriting) {
    const HeldValue selectors[] = {HeldValue(new KEL_Selector_Impl(nullptr)),
                                   HeldValue(new KEL_MultiSelector_Impl(nullptr))};
    for (const HeldValue& selector : selectors) {
        TextOutput output;
        const auto document = arrayOf(intOf(1), structOf("s", selector), intOf(2));
        EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(selector); }),
                  "General KEL exception.");
        EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(document); }),
                  "General KEL exception.");
        EXPECT_EQ(output.bytes(), "[\n\t1\n\t{\n\t\ts = "); // the output keeps what was written
    }
}

TEST(TextSelector, IsRefusedInsideListsAndCheckedStructsToo) {
    const HeldValue selector(new KEL_Selector_Impl(nullptr));
    for (const HeldValue& value :
         {listOf(arrayOf(selector), arrayOf(intOf(1))), metaOf("x", selector),
          descriptorOf("default", selector), structDescriptorOf("x", selector)}) {
        EXPECT_EQ(thrownMessage<KELIOException>([&] { textOf(value); }), "General KEL exception.");
        EXPECT_EQ(textOf(intOf(1)), "1\n");
    }
}

// ---- Checked structs and descriptors -----------------------------------------------------------

TEST(TextMeta, AnEmptyCheckedStructIsFollowedByAnEmptyLine) {
    EXPECT_EQ(thereAndBack(metaOf()), "{ @type = 50\n}\n\n");
}

TEST(TextMeta, AnEmptyVariableDescriptorStatesItsKind) {
    EXPECT_EQ(thereAndBack(descriptorOf()), "{ @type = 52\n}\n\n");
}

TEST(TextMeta, AStructDescriptorStatesItsIdentityToo) {
    EXPECT_EQ(thereAndBack(structDescriptorWith(1)),
              "{ @type = 51, @hashCode = " + id1 + "\n}\n\n");
}

TEST(TextMeta, AsAnElementItsIndentationStandsTwice) {
    EXPECT_EQ(thereAndBack(arrayOf(structDescriptorWith(1))),
              "[\n\t\t{ @type = 51, @hashCode = " + id1 + "\n\t}\n\n]\n");
    EXPECT_EQ(thereAndBack(arrayOf(arrayOf(metaOf("x", intOf(1)), intOf(2)))),
              "[\n\t[\n\t\t\t\t{ @type = 50\n\t\t\tx = 1\n\t\t}\n\n\t\t2\n\t]\n]\n");
}

TEST(TextMeta, InsideAStructOrManagerTheLineGoesOn) {
    EXPECT_EQ(thereAndBack(structOf("a", descriptorOf(), "b", intOf(1))),
              "{\n\ta = { @type = 52\n\t}\n\n\tb = 1\n}\n");
    EXPECT_EQ(thereAndBack(managerOf(with<MetaKel_Impl>(1))),
              "(\n\t" + id1 + " = { @type = 50\n\t}\n\n)\n");
}

TEST(TextMeta, InsideAnIndexListTheIndentationStandsTwice) {
    EXPECT_EQ(thereAndBack(listOf(arrayOf(intOf(1)), arrayOf(metaOf()))),
              "<\n\t/* keys: */ \n\t[\n\t\t1\n\t]\n\t/* values: */ \n\t[\n"
              "\t\t\t\t{ @type = 50\n\t\t}\n\n\t]\n>\n");
}

TEST(TextMeta, AWholeCheckedStructCarriesItsDescriptor) {
    const auto descriptor = structDescriptorWith(1, "level", intRange(0, 10));
    const auto meta = metaOf("@desc", descriptor, "level", intOf(3), "none", nullptr);
    EXPECT_EQ(thereAndBack(meta), "{ @type = 50\n"
                                  "\t@desc = { @type = 51, @hashCode = " +
                                      id1 +
                                      "\n"
                                      "\t\tlevel = { @type = 52\n"
                                      "\t\t\tmax = 10\n"
                                      "\t\t\tmin = 0\n"
                                      "\t\t\ttype = 1\n"
                                      "\t\t}\n"
                                      "\n"
                                      "\t}\n"
                                      "\n"
                                      "\tlevel = 3\n"
                                      "\tnone = NULL\n"
                                      "}\n"
                                      "\n");
}

TEST(TextMeta, WhatIsReadIsInUse) {
    const auto meta = read("{ @type = 50\n @desc = { @type = 51\n level = { @type = 52\n type = 1\n"
                           "min = 0 max = 10 } }\n level = 3 }");
    ASSERT_NE(asMeta(meta).getDescriptor(), nullptr);
    asMeta(meta).setVar("level", intOf(11).get());
    EXPECT_EQ(asMeta(meta).getInt("level"), 3);
    asMeta(meta).setVar("level", intOf(10).get());
    EXPECT_EQ(asMeta(meta).getInt("level"), 10);
}

TEST(TextMeta, ReadingLosesNothingThatADescriptorForbids) {
    const auto meta =
        read("{ @type = 50\n level = 99\n @desc = { @type = 51\n level = { @type = 52\n"
             "type = 1 min = 0 max = 10 } }\n level2 = null\n @other = 1 }");
    EXPECT_EQ(asMeta(meta).getInt("level"), 99);
    EXPECT_TRUE(asMeta(meta).containsVar("level2"));
    EXPECT_TRUE(asMeta(meta).containsVar("@other"));
    EXPECT_EQ(asMeta(meta).getCount(), 4);
}

TEST(TextMeta, ADescriptorThatIsSomethingElseComesBackAndDescribesNothing) {
    for (const char* other : {"5", "{}", "[ ]", "{ @type = 52 }", "null"}) {
        const auto meta = read("{ @type = 50\n @desc = " + std::string(other) + "\n}");
        EXPECT_EQ(asMeta(meta).getDescriptor(), nullptr) << other;
        EXPECT_TRUE(asMeta(meta).containsVar("@desc")) << other;
        EXPECT_EQ(rewritten(textOf(meta)), textOf(meta));
    }
}

TEST(TextMeta, TheEmptyLineIsNotNeeded) {
    EXPECT_EQ(rewritten("[{ @type = 50 } { @type = 52\n} 1]"),
              "[\n\t\t{ @type = 50\n\t}\n\n\t\t{ @type = 52\n\t}\n\n\t1\n]\n");
}

TEST(TextMeta, RootsThatFollowOneAnotherAreReadInTurn) {
    TextOutput output;
    output.write(metaOf("x", intOf(1))).write(descriptorOf()).write(intOf(5));
    TextInput input(output.bytes());
    EXPECT_EQ(input.read()->getType(), KELKind_MetaKel);
    EXPECT_EQ(input.read()->getType(), KELKind_MetaKelVarDescriptor);
    EXPECT_EQ(input.read()->toInt(), 5);
}

TEST(TextMeta, TheKindsBetweenAreSyntaxErrors) {
    for (const char* kind : {"0", "1", "7", "9", "10", "11", "12", "13", "49", "53", "-50"}) {
        EXPECT_EQ(refusalOf("{ @type = " + std::string(kind) + "\n}"), syntaxErrorAt(1)) << kind;
    }
    EXPECT_EQ(refusalOf("{ @type = 50.5\n}"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @type = meta\n}"), syntaxErrorAt(1));
    EXPECT_EQ(refusalOf("{ @type = 51, @hashCode = 5\n}"), syntaxErrorAt(1));
}

TEST(TextMeta, AHeaderThatEndsTooEarlyIsAnUnexpectedEnd) {
    for (const char* text : {"{ @type", "{ @type =", "{ @type = 50", "{ @type = 51, @hashCode =",
                             "{ @type = 50\n", "{ @type = 50\n x = 1\n"}) {
        EXPECT_EQ(endingOf(text), endAt(lastLineOf(text))) << text;
    }
}

// ---- Identities --------------------------------------------------------------------------------

TEST(TextMetaIdentity, TheHeadersIdentityIsThatOfValueAndStruct) {
    const auto descriptor = read("{ @type = 51, @hashCode = " + id1 + "\n}");
    EXPECT_EQ(identityOf(descriptor), id1);
    EXPECT_EQ(innerIdentityOf(descriptor), id1);
}

TEST(TextMetaIdentity, AnIdentityInFrontIsThatOfBothWhereTheHeaderHasNone) {
    for (const char* kind : {"50", "51", "52"}) {
        const auto value = read(id1 + " = { @type = " + kind + "\n}");
        EXPECT_EQ(identityOf(value), id1);
        EXPECT_EQ(innerIdentityOf(value), id1);
    }
}

TEST(TextMetaIdentity, AnIdentityInFrontWinsForTheValueAndTheHeaderKeepsTheStruct) {
    const std::string text = "(\n\t" + id1 + " = { @type = 51, @hashCode = " + id2 + "\n\t}\n\n)\n";
    const auto manager = read(text);
    const HeldValue descriptor(KEL_Impl::of(asManager(manager).getKel(codeOf(1))));
    descriptor->addRef();
    EXPECT_EQ(identityOf(descriptor), id1);
    EXPECT_EQ(innerIdentityOf(descriptor), id2);
    EXPECT_EQ(textOf(manager), text);
}

TEST(TextMetaIdentity, EveryKindTakesAHeaderIdentity) {
    for (const char* kind : {"8", "50", "52"}) {
        const auto value = read("{ @type = " + std::string(kind) + ", @hashCode = " + id1 + "\n}");
        EXPECT_EQ(identityOf(value), id1) << kind;
    }
}

TEST(TextMetaIdentity, WithoutOneTheIdentityIsFreshAndTheSameInside) {
    const auto first = read("{ @type = 51\n}"), second = read("{ @type = 51\n}");
    EXPECT_NE(identityOf(first), identityOf(second));
    EXPECT_EQ(identityOf(first), innerIdentityOf(first));
}

TEST(TextMetaIdentity, AReferenceFindsADescriptorByItsHeader) {
    const auto array = read("[ { @type = 51, @hashCode = " + id1 +
                            "\n} { @type = 50\n @desc = REF " + id1 + " } ]");
    const HeldValue meta(KEL_Impl::of(at(array, 1)));
    meta->addRef();
    EXPECT_EQ(static_cast<KEL*>(asMeta(meta).getDescriptor()), at(array, 0));
}

TEST(TextMetaIdentity, DescriptorsKeepTheirsThroughTextWhereverTheyStand) {
    const auto descriptor = structDescriptorOf("x", intRange(0, 1));
    const auto document = arrayOf(metaOf("@desc", descriptor), structOf("d", descriptor));
    const auto back = read(thereAndBack(document));
    const HeldValue meta(KEL_Impl::of(at(back, 0)));
    meta->addRef();
    EXPECT_EQ(identityOf(asMeta(meta).getDescriptor()), identityOf(descriptor));
}

} // namespace
