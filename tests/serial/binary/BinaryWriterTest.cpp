// The output of the binary writer, byte by byte.
#include "support/Bytes.h"
#include "support/FailingSink.h"
#include "support/PieceStream.h"
#include "support/Records.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace kel::test;

namespace {

const std::string magic = "4B 45 4C 00 ";                                        // "KEL" and a NUL
const std::string identity = "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F "; // of counting
const std::string zeroes = "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ";
const std::string version = "01 00 ";
const std::string back = "FF FF FF 7F"; // the kind of a reference

/// Returns the identity of codeOf(number). The number is given as two digits.
std::string code(const std::string& digits) {
    return "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " + digits + " ";
}

// ---- Records of every kind ---------------------------------------------------------------------

TEST(BinaryWriter, AnInt) {
    EXPECT_EQ(hex(binaryOf(intWith(counting, -2))),
              magic + identity +               //
                  "01 00 00 00 " +             // kind
                  version +                    //
                  "04 00 00 00 00 00 00 00 " + // payload length
                  "FE FF FF FF");              // payload
}

TEST(BinaryWriter, ABoolean) {
    EXPECT_EQ(hex(binaryOf(make<KEL_Boolean_Impl>(counting, true))),
              magic + identity + "02 00 00 00 " + version + "01 00 00 00 00 00 00 00 01");
    EXPECT_EQ(hex(binaryOf(make<KEL_Boolean_Impl>(counting, false))),
              magic + identity + "02 00 00 00 " + version + "01 00 00 00 00 00 00 00 00");
}

TEST(BinaryWriter, ADouble) {
    EXPECT_EQ(hex(binaryOf(make<KEL_Double_Impl>(counting, 1.5))), // bits 3FF8000000000000
              magic + identity + "03 00 00 00 " + version +
                  "08 00 00 00 00 00 00 00 00 00 00 00 00 00 F8 3F");
}

TEST(BinaryWriter, AMemoryBlock) {
    EXPECT_EQ(hex(binaryOf(make<KEL_MemBlock_Impl>(counting, 3, "\0\xFF\0"))),
              magic + identity + "05 00 00 00 " + version + "03 00 00 00 00 00 00 00 00 FF 00");
}

TEST(BinaryWriter, AMemoryBlockThatStillWaitsForItsSourceIsLoaded) {
    const Held<JInputStream> source(new PieceStream("abcdef"));
    const auto block = make<KEL_MemBlock_Impl>(source.get(), 4);
    const std::string written = binaryOf(block);
    EXPECT_EQ(written.substr(written.size() - 12), littleEndian(4, 8) + "abcd");
}

TEST(BinaryWriter, AMemoryBlockThatCannotBeLoadedIsReported) {
    const Held<JInputStream> source(new PieceStream("abc"));
    const auto block = make<KEL_MemBlock_Impl>(source.get(), 4);
    EXPECT_EQ(thrownMessage<KELMemBlockException>([&] { binaryOf(block); }),
              "Cannot read past the end of the memory block.");
}

TEST(BinaryWriter, AStringHasNoTerminator) {
    EXPECT_EQ(hex(binaryOf(stringWith(counting, "ab\""))),
              magic + identity + "06 00 00 00 " + version + "03 00 00 00 00 00 00 00 61 62 22");
    EXPECT_EQ(hex(binaryOf(stringWith(counting, ""))),
              magic + identity + "06 00 00 00 " + version + "00 00 00 00 00 00 00 00");
}

TEST(BinaryWriter, AStringThatNoReaderAcceptsIsRefusedAndNothingWritten) {
    BinaryOutput output;
    output->setLongestString(3);
    const auto before = intOf(7);
    const auto value = arrayOf(before, stringOf("abcd"));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(value); }),
              "Cannot write a string of more than 2147483647 bytes.");
    EXPECT_EQ(output.bytes(), "");
    const auto after = arrayOf(before, stringOf("abc"));
    EXPECT_EQ(output.write(after).bytes(), binaryOf(after)) << "nothing is referred to";
}

TEST(BinaryWriter, AnEmptyArrayHasAPayloadOfNoBytes) {
    EXPECT_EQ(hex(binaryOf(arrayWith(counting))),
              magic + identity + "07 00 00 00 " + version + "00 00 00 00 00 00 00 00");
}

TEST(BinaryWriter, AnArrayHoldsItsElementsRecordsInOrder) {
    EXPECT_EQ(hex(binaryOf(arrayWith(counting, intWith(codeOf(1), 5), intWith(codeOf(2), 6)))),
              magic + identity + "07 00 00 00 " + version + // the array
                  "4C 00 00 00 00 00 00 00 " +              // two records of 38 bytes
                  magic + code("01") + "01 00 00 00 " + version +
                  "04 00 00 00 00 00 00 00 05 00 00 00 " + // first element
                  magic + code("02") + "01 00 00 00 " + version +
                  "04 00 00 00 00 00 00 00 06 00 00 00"); // second element
}

TEST(BinaryWriter, AStructHoldsNamesAndRecordsInNameOrder) {
    EXPECT_EQ(hex(binaryOf(structWith(counting, "b", intWith(codeOf(1), 5), "a", nullptr))),
              magic + identity + "08 00 00 00 " + version + // the struct
                  "42 00 00 00 00 00 00 00 " +              // 2 + 24 and 2 + 38 bytes
                  "61 00 " + magic + zeroes + back + " " +  // "a": no value
                  "62 00 " + magic + code("01") + "01 00 00 00 " + version +
                  "04 00 00 00 00 00 00 00 05 00 00 00"); // "b"
}

TEST(BinaryWriter, LengthsOfNestedContainersCountAllThatIsInside) {
    const auto nested = arrayWith(counting, structWith(codeOf(1), "x", arrayWith(codeOf(2))));
    EXPECT_EQ(hex(binaryOf(nested)),
              hex(record(counting, KELKind_Array,
                         record(codeOf(1), KELKind_Struct,
                                variable("x", record(codeOf(2), KELKind_Array, ""))))));
}

TEST(BinaryWriter, DoublesKeepAllTheirBits) {
    for (const double value : {0.1, -0.0, double{INFINITY}, 1e300, 5e-324}) {
        EXPECT_EQ(binaryOf(make<KEL_Double_Impl>(counting, value)),
                  record(counting, KELKind_Double,
                         std::string(reinterpret_cast<const char*>(&value), 8)));
    }
}

TEST(BinaryWriter, PayloadsAroundTheBuffersEndAreWhole) {
    constexpr std::size_t chunk = 256 * 1024;
    for (std::size_t size = chunk - 140; size < chunk + 10; ++size) {
        const std::string text(size, 'x');
        const auto value = arrayWith(counting, stringWith(codeOf(1), text), intWith(codeOf(2), 7));
        ASSERT_EQ(binaryOf(value),
                  record(counting, KELKind_Array,
                         record(codeOf(1), KELKind_String, text) + intRecord(codeOf(2), 7)))
            << size;
    }
}

// ---- References --------------------------------------------------------------------------------

TEST(BinaryWriter, ASharedValueIsWrittenOnceAndThenAsAReferenceOf24Bytes) {
    const auto shared = intWith(counting, 5);
    const auto array = arrayWith(codeOf(1), shared, shared);
    EXPECT_EQ(reference(counting).size(), 24U);
    EXPECT_EQ(hex(binaryOf(array)),
              hex(record(codeOf(1), KELKind_Array, intRecord(counting, 5) + reference(counting))));
}

TEST(BinaryWriter, AValueInTwoArraysOfATreeIsWrittenOnce) {
    const auto shared = stringOf("shared");
    const auto tree = arrayOf(arrayOf(shared), arrayOf(shared));
    const std::string written = binaryOf(tree);
    EXPECT_EQ(written.size(), 34 + 2 * 34 + 34 + 6 + 24U);
    EXPECT_EQ(written.substr(written.size() - 24), reference(shared->identity()));
}

TEST(BinaryWriter, ASecondWriteOfAValueIsAReference) {
    BinaryOutput output;
    const auto value = intWith(counting, 5);
    EXPECT_EQ(hex(output.write(value).write(value).write(value).bytes()),
              hex(intRecord(counting, 5) + reference(counting) + reference(counting)));
}

TEST(BinaryWriter, ALaterRootRefersToPartsOfAnEarlierOne) {
    for (const bool given : {true, false}) {
        const auto part = given ? intWith(counting, 5) : intOf(5);
        const auto first = arrayOf(intOf(1), part);
        const auto second = arrayOf(part);
        BinaryOutput output;
        const std::size_t firstSize = output.write(first).bytes().size();
        EXPECT_EQ(output.write(second).bytes().substr(firstSize),
                  record(second->identity(), KELKind_Array, reference(part->identity())));
    }
}

TEST(BinaryWriter, AnEarlierRootCanBeAPartOfALaterOne) {
    const auto inner = arrayOf(intOf(5));
    const auto outer = arrayOf(inner, inner);
    BinaryOutput output;
    const std::size_t innerSize = output.write(inner).bytes().size();
    EXPECT_EQ(output.write(outer).bytes().substr(innerSize),
              record(outer->identity(), KELKind_Array,
                     reference(inner->identity()) + reference(inner->identity())));
}

std::string lastReference(const HeldValue& value) {
    const std::string written = binaryOf(value);
    return written.substr(written.size() - 24);
}

TEST(BinaryWriter, WhatCountsIsTheIdentityNotTheObject) {
    const auto original = intOf(5);
    const auto twin = intWith(original->identity(), 6);
    EXPECT_EQ(lastReference(arrayOf(original, twin)), reference(original->identity()));
    EXPECT_EQ(lastReference(arrayOf(twin, original)), reference(original->identity()));
}

TEST(BinaryWriter, ATwinBehindManyValuesIsFound) {
    const auto first = intOf(1);
    const auto array = arrayOf(first);
    for (int i = 0; i < 5000; ++i) {
        asArray(array).addInt(i);
    }
    asArray(array).addVar(intWith(first->identity(), 2).get());
    EXPECT_EQ(lastReference(array), reference(first->identity()));
}

TEST(BinaryWriter, AValueWhoseIdentityIsZeroIsAlwaysWrittenInFull) {
    const auto zero = intWith(JHashCode(), 5);
    BinaryOutput output;
    output.write(zero).write(zero).write(arrayWith(counting, zero, zero));
    const std::string full = intRecord(JHashCode(), 5);
    EXPECT_EQ(hex(output.bytes()), hex(full + full + record(counting, KELKind_Array, full + full)));
}

// ---- Values that contain themselves ------------------------------------------------------------

TEST(BinaryWriter, AValueInsideItselfIsAReference) {
    const auto loop = arrayWith(counting);
    const TakeApart atEnd(loop.get());
    asArray(loop).addVar(loop.get());
    EXPECT_EQ(hex(binaryOf(loop)), hex(record(counting, KELKind_Array, reference(counting))));
}

TEST(BinaryWriter, ARootHeldOnlyByItsOwnPartIsAReferenceThere) {
    auto root = arrayOf();
    const auto part = arrayOf(root);
    const TakeApart atEnd(part.get());
    asArray(root).addVar(part.get());
    KEL_Impl* borrowed = root.get();
    root.clear(); // the part's reference is the only one left
    EXPECT_EQ(hex(binaryOf(borrowed)), hex(record(borrowed->identity(), KELKind_Array,
                                                  record(part->identity(), KELKind_Array,
                                                         reference(borrowed->identity())))));
}

TEST(BinaryWriter, AValueWhoseIdentityIsZeroCannotBeInsideItself) {
    const auto loop = arrayWith(JHashCode());
    const TakeApart atEnd(loop.get());
    asArray(loop).addVar(structWith(JHashCode(), "again", loop).get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { binaryOf(loop); }),
              "Cannot write a value that contains itself.");
}

TEST(BinaryWriter, ALoopThroughAZeroIdentityIsWrittenOnce) {
    const auto loop = arrayWith(counting);
    const TakeApart atEnd(loop.get());
    asArray(loop).addVar(arrayWith(JHashCode(), loop).get());
    EXPECT_EQ(hex(binaryOf(loop)),
              hex(record(counting, KELKind_Array,
                         record(JHashCode(), KELKind_Array, reference(counting)))));
}

// ---- Refusals ----------------------------------------------------------------------------------

TEST(BinaryWriter, ANullRootIsRefusedAndNothingWritten) {
    BinaryOutput output;
    EXPECT_EQ(thrownMessage<KELNullPointerException>([&] { output.write(nullptr); }),
              "General KEL exception.");
    EXPECT_EQ(output.bytes(), "");
}

TEST(BinaryWriter, AGuidLeavesItsRecordUpToTheVersion) {
    BinaryOutput output;
    const auto guid = make<KEL_guid_Impl>(counting, JHashCode(1));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(guid); }), "General KEL exception.");
    EXPECT_EQ(hex(output.bytes() + "\xFF"), magic + identity + "04 00 00 00 01 00 FF");
}

TEST(BinaryWriter, AManagerIsRefusedToo) {
    EXPECT_EQ(thrownMessage<KELIOException>([] { binaryOf(managerOf()); }),
              "General KEL exception.");
}

TEST(BinaryWriter, ARefusalInsideLeavesLengthsOfZeroAroundIt) {
    BinaryOutput output;
    const auto tree =
        arrayWith(counting, intWith(codeOf(1), 5), structWith(codeOf(2), "g", guidOf(JHashCode())),
                  intWith(codeOf(3), 6));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(tree); }), "General KEL exception.");
    const std::string written = output.bytes();
    const std::string before = prefix(counting, KELKind_Array, 0) + intRecord(codeOf(1), 5) +
                               prefix(codeOf(2), KELKind_Struct, 0) + bytes("g\0");
    EXPECT_EQ(hex(written.substr(0, before.size())), hex(before));
    EXPECT_EQ(written.size(), before.size() + 26); // magic, identity, kind and version
}

// ---- Writes after failed writes ----------------------------------------------------------------

/// Returns the bytes that a stream writes for a value after it refused to write another one.
std::string writtenAfter(const HeldValue& refused, const HeldValue& value) {
    BinaryOutput output;
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(refused); }),
              "General KEL exception.");
    const std::size_t before = output.bytes().size();
    return output.write(value).bytes().substr(before);
}

TEST(BinaryWriterAfterARefusal, TheRefusedValueIsTriedAgain) {
    const auto guid = guidOf(JHashCode());
    BinaryOutput output;
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(guid); }), "General KEL exception.");
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.write(guid); }), "General KEL exception.");
    EXPECT_EQ(output.bytes().size(), 2 * 26U);
}

TEST(BinaryWriterAfterARefusal, TheContainersAroundAreWrittenInFull) {
    const auto inner = arrayOf(guidOf(JHashCode()));
    const auto outer = structOf("inner", inner);
    const auto again = arrayOf(inner, outer);
    BinaryOutput output;
    thrownMessage<KELIOException>([&] { output.write(outer); });
    asArray(inner).removeAllVars();
    const std::size_t before = output.bytes().size();
    EXPECT_EQ(output.write(again).bytes().substr(before),
              record(again->identity(), KELKind_Array,
                     record(inner->identity(), KELKind_Array, "") +
                         record(outer->identity(), KELKind_Struct,
                                variable("inner", reference(inner->identity())))));
}

TEST(BinaryWriterAfterARefusal, ValuesWhoseRecordsAreCompleteAreReferredTo) {
    const auto part = intOf(5);
    const auto refused = arrayOf(part, guidOf(JHashCode()));
    EXPECT_EQ(writtenAfter(refused, part), reference(part->identity()));
}

TEST(BinaryWriterAfterARefusal, ThatHoldsForGivenIdentitiesToo) {
    const auto part = intWith(counting, 5);
    const auto refused = arrayWith(codeOf(1), part, guidOf(JHashCode()));
    EXPECT_EQ(writtenAfter(refused, arrayWith(codeOf(1), part)),
              record(codeOf(1), KELKind_Array, reference(counting)));
}

TEST(BinaryWriterAfterAFailure, NothingOfThatWriteIsReferredTo) {
    auto* sink = new FailingSink;
    const JPointer<KELBinaryOutputStream_Impl> stream(
        new KELBinaryOutputStream_Impl(JPointer<JOutputStream>(sink)));
    const auto early = intWith(codeOf(1), 1);
    const auto tree = arrayWith(counting, early, intWith(codeOf(2), 2));
    stream->write(early.get());
    sink->allowed = sink->writes;
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->write(tree.get()); }),
              "FailingSink failed.");
    sink->bytes.clear();
    stream->write(tree.get());
    EXPECT_EQ(hex(sink->bytes),
              hex(record(counting, KELKind_Array, reference(codeOf(1)) + intRecord(codeOf(2), 2))));
}

// ---- Single numbers ----------------------------------------------------------------------------

TEST(TypedBinaryOutput, NumbersAreLittleEndian) {
    BinaryOutput output;
    output->JWrite8(-1);
    output->JWrite16(0x0102);
    output->JWrite32(0x01020304);
    output->JWrite64(uint64_t{0x0102030405060708});
    output->JWriteDouble(1.0);
    EXPECT_EQ(hex(output.bytes()), "FF 02 01 04 03 02 01 08 07 06 05 04 03 02 01 "
                                   "00 00 00 00 00 00 F0 3F");
}

TEST(TypedBinaryOutput, A128BitValueIsSixteenBytes) {
    BinaryOutput output;
    output->JWrite128(counting);
    EXPECT_EQ(hex(output.bytes()) + " ", identity);
}

TEST(TypedBinaryOutput, AStringHasItsNul) {
    BinaryOutput output;
    output->JWriteString("ab");
    output->JWriteString("");
    output->JWriteString(nullptr);
    EXPECT_EQ(hex(output.bytes()), "61 62 00 00");
}

TEST(TypedBinaryOutput, RawBytesStandBetweenRecords) {
    BinaryOutput output;
    output->JWrite('<');
    output.write(intWith(counting, 1));
    output->JWrite(unsignedBytes("x>"), 1, 1);
    EXPECT_EQ(hex(output.bytes()), "3C " + hex(intRecord(counting, 1)) + " 3E");
}

TEST(TypedBinaryOutput, TheByteOrderIsThatOfSingleNumbers) {
    BinaryOutput output;
    EXPECT_EQ(output->getByteOrder(), 1);
    output->setByteOrder(0);
    EXPECT_EQ(output->getByteOrder(), 0);
    output->JWrite16(0x0102);
    EXPECT_EQ(output.bytes(), "\1\2");
}

} // namespace
