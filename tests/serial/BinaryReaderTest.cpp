// What the binary reader reads and refuses.
#include "support/AllocationFailure.h"
#include "support/Bytes.h"
#include "support/PieceStream.h"
#include "support/Records.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

constexpr JHashCode counting(0x03020100, 0x07060504, 0x0B0A0908, 0x0F0E0D0C);
constexpr const char* badHeader = "Error reading KEL header.";
constexpr const char* badCode = "Error in KEL hash code.";

std::string refusal(const std::string& records) {
    return thrownMessage<KELIOException>([&] { readBinary(records); });
}

std::string cutShort(const std::string& records) {
    return thrownMessage<JEOFException>([&] { readBinary(records); });
}

// ---- Every kind --------------------------------------------------------------------------------

TEST(BinaryReader, RestoresKindsValuesAndIdentities) {
    const auto value = readBinary(intRecord(counting, -2));
    EXPECT_EQ(value->getType(), KELKind_Int);
    EXPECT_EQ(value->toInt(), -2);
    EXPECT_EQ(value->identity(), counting);
}

TEST(BinaryReader, ReadsBooleans) {
    EXPECT_TRUE(readBinary(record(counting, KELKind_Boolean, bytes("\1")))->toBoolean());
    EXPECT_FALSE(readBinary(record(counting, KELKind_Boolean, bytes("\0")))->toBoolean());
    EXPECT_TRUE(readBinary(record(counting, KELKind_Boolean, "\xFF"))->toBoolean());
}

TEST(BinaryReader, ReadsDoubles) {
    const auto value = readBinary(record(counting, KELKind_Double, bytes("\0\0\0\0\0\0\xF8\x3F")));
    EXPECT_EQ(value->getType(), KELKind_Double);
    EXPECT_EQ(value->toDouble(), 1.5);
}

TEST(BinaryReader, ReadsMemoryBlocksAtOnce) {
    const auto value = readBinary(record(counting, KELKind_MemBlock, bytes("a\0b")));
    const auto& block = dynamic_cast<const KEL_MemBlock_Impl&>(*value);
    ASSERT_NE(block.loadedBytes(), nullptr);
    EXPECT_EQ(hex({reinterpret_cast<const char*>(block.loadedBytes()), 3}), "61 00 62");
    EXPECT_EQ(dynamic_cast<KEL_MemBlock&>(*value).getSize(), 3);
}

TEST(BinaryReader, ReadsEmptyPayloads) {
    EXPECT_STREQ(readBinary(record(counting, KELKind_String, ""))->toString(), "");
    EXPECT_EQ(asArray(readBinary(record(counting, KELKind_Array, ""))).getCount(), 0);
    EXPECT_EQ(asStruct(readBinary(record(counting, KELKind_Struct, ""))).getCount(), 0);
    const auto block = readBinary(record(counting, KELKind_MemBlock, ""));
    EXPECT_EQ(dynamic_cast<KEL_MemBlock&>(*block).getSize(), 0);
}

TEST(BinaryReader, ReadsStringsOfAnyLength) {
    const std::string text(1000000, 'x');
    EXPECT_EQ(readBinary(record(counting, KELKind_String, text))->toString(), text);
}

TEST(BinaryReader, ReadsContainers) {
    const auto value = readBinary(
        record(counting, KELKind_Array,
               intRecord(codeOf(1), 5) +
                   record(codeOf(2), KELKind_Struct, variable("a b", intRecord(codeOf(3), 6)))));
    EXPECT_EQ(textOf(value), "[\n\t5\n\t{\n\t\t\"a b\" = 6\n\t}\n]\n");
    EXPECT_EQ(KEL_Impl::of(at(value, 1))->identity(), codeOf(2));
}

TEST(BinaryReader, NamesOfAnyLengthAndOrderAreTaken) {
    const std::string name(100000, 'n');
    const auto value = readBinary(record(counting, KELKind_Struct,
                                         variable(name, intRecord(codeOf(1), 1)) +
                                             variable("a", intRecord(codeOf(2), 2))));
    EXPECT_EQ(at(value, name.c_str())->toInt(), 1);
    EXPECT_EQ(at(value, "a")->toInt(), 2);
}

TEST(BinaryReader, OfTwoEqualNamesTheLastWins) {
    const auto value = readBinary(
        record(counting, KELKind_Struct,
               variable("a", intRecord(codeOf(1), 1)) + variable("a", intRecord(codeOf(2), 2))));
    EXPECT_EQ(asStruct(value).getCount(), 1);
    EXPECT_EQ(at(value, "a")->toInt(), 2);
}

TEST(BinaryReader, ReadsOneRootAfterTheOther) {
    BinaryInput input(intRecord(codeOf(1), 1) + record(codeOf(2), KELKind_String, "two") + "rest");
    EXPECT_EQ(input.read()->toInt(), 1);
    EXPECT_STREQ(input.read()->toString(), "two");
    EXPECT_EQ(input->JRead(), 'r');
}

TEST(BinaryReader, TheEndOfTheInputBetweenRecords) {
    BinaryInput input(intRecord(codeOf(1), 1));
    input.read();
    EXPECT_EQ(thrownMessage<JEOFException>([&] { input.read(); }),
              "BinaryDataInput::JReadString(). EOF reached.");
}

// ---- References --------------------------------------------------------------------------------

TEST(BinaryReader, AReferenceIsTheVeryValue) {
    const auto value = readBinary(record(counting, KELKind_Array,
                                         record(codeOf(1), KELKind_Array, intRecord(codeOf(2), 5)) +
                                             record(codeOf(3), KELKind_Array, reference(codeOf(2)))));
    EXPECT_EQ(asArray(at(value, 0)).getVar(0), asArray(at(value, 1)).getVar(0));
}

TEST(BinaryReader, AReferenceReachesEarlierRoots) {
    BinaryInput input(intRecord(counting, 5) + reference(counting) +
                      record(codeOf(1), KELKind_Array, reference(counting)));
    const auto first = input.read();
    EXPECT_EQ(input.read().get(), first.get());
    EXPECT_EQ(at(input.read(), 0), first.get());
}

TEST(BinaryReader, AReferenceReachesAValueThatTheHostHasReleased) {
    BinaryInput input(intRecord(counting, 5) + reference(counting));
    input.read();
    EXPECT_EQ(input.read()->toInt(), 5);
}

TEST(BinaryReader, AnUnknownReferenceIsRefused) {
    EXPECT_EQ(refusal(reference(counting)), badCode);
    EXPECT_EQ(refusal(record(codeOf(1), KELKind_Array, reference(counting))), badCode);
    EXPECT_EQ(refusal(record(codeOf(1), KELKind_Struct, variable("a", reference(counting)))),
              badCode);
}

TEST(BinaryReader, AZeroReferenceIsNullInAStructOnly) {
    const auto value =
        readBinary(record(counting, KELKind_Struct, variable("a", reference(JHashCode()))));
    EXPECT_TRUE(asStruct(value).containsVar("a"));
    EXPECT_EQ(at(value, "a"), nullptr);
    EXPECT_EQ(refusal(record(counting, KELKind_Array, reference(JHashCode()))), badCode);
    EXPECT_EQ(refusal(reference(JHashCode())), badCode);
}

TEST(BinaryReader, AValueWhoseIdentityIsZeroIsNeverReferredTo) {
    const std::string zero = intRecord(JHashCode(), 5);
    const auto value = readBinary(record(counting, KELKind_Struct,
                                         variable("a", zero) + variable("b", reference(JHashCode()))));
    EXPECT_EQ(at(value, "a")->toInt(), 5);
    EXPECT_EQ(at(value, "b"), nullptr);
    EXPECT_EQ(refusal(record(counting, KELKind_Array, zero + reference(JHashCode()))), badCode);
}

TEST(BinaryReader, OfTwoRecordsWithOneIdentityTheLastIsReferredTo) {
    const auto value = readBinary(
        record(counting, KELKind_Array,
               intRecord(codeOf(1), 1) + intRecord(codeOf(1), 2) + reference(codeOf(1))));
    EXPECT_NE(at(value, 0), at(value, 1));
    EXPECT_EQ(at(value, 2), at(value, 1));
}

TEST(BinaryReader, AContainerMayContainItself) {
    const auto loop = readBinary(record(counting, KELKind_Array, reference(counting)));
    const TakeApart atEnd(loop.get());
    EXPECT_EQ(at(loop, 0), loop.get());
}

TEST(BinaryReader, ALoopOverSeveralLevelsSurvivesTheRoundTrip) {
    const auto loop = arrayOf(intOf(1));
    const TakeApart first(loop.get());
    asArray(loop).addVar(structOf("again", loop, "other", nullptr).get());
    const auto back = readBinary(binaryOf(loop));
    const TakeApart second(back.get());
    EXPECT_EQ(asStruct(at(back, 1)).getVar("again"), back.get());
    back->release(); // what getVar gave
    EXPECT_EQ(binaryOf(back), binaryOf(loop));
}

// ---- Refused headers ---------------------------------------------------------------------------

TEST(BinaryReader, ABadMagicIsRefused) {
    EXPECT_EQ(refusal("kel" + intRecord(counting, 1).substr(3)), badHeader);
    EXPECT_EQ(refusal("KELL" + intRecord(counting, 1).substr(4)), badHeader);
    EXPECT_EQ(refusal(bytes("\0KEL") + intRecord(counting, 1)), badHeader);
    EXPECT_EQ(refusal("{\n}\n"), badHeader);
}

TEST(BinaryReader, ABadMagicInsideAContainerIsRefused) {
    EXPECT_EQ(refusal(record(counting, KELKind_Array, "xxxx" + intRecord(codeOf(1), 1).substr(4))),
              badHeader);
}

TEST(BinaryReader, AVersionOtherThanOneIsRefused) {
    for (const int version : {0, 2, 0x0100, 0xFFFF}) {
        const auto stored = static_cast<uint16_t>(version);
        EXPECT_EQ(refusal(prefix(counting, KELKind_Int, 4, stored) + "abcd"), badHeader);
    }
}

TEST(BinaryReader, AKindWithoutABinaryFormIsRefused) {
    for (const int32_t kind : {0, -1, 4, 9, 10, 11, 12, 13, 50, 51, 52, 0x7FFFFFFE, INT32_MIN}) {
        EXPECT_EQ(refusal(record(counting, kind, "abcd")), badHeader) << kind;
    }
}

TEST(BinaryReader, AnIntsLengthMustBeFour) {
    for (const std::string payload : {"", "abc", "abcde", "abcdefgh"}) {
        EXPECT_EQ(refusal(record(counting, KELKind_Int, payload)), badHeader);
    }
}

TEST(BinaryReader, ABooleansLengthMustBeOne) {
    EXPECT_EQ(refusal(record(counting, KELKind_Boolean, "")), badHeader);
    EXPECT_EQ(refusal(record(counting, KELKind_Boolean, "ab")), badHeader);
}

TEST(BinaryReader, ADoublesLengthMustBeEight) {
    EXPECT_EQ(refusal(record(counting, KELKind_Double, "abcdefg")), badHeader);
    EXPECT_EQ(refusal(record(counting, KELKind_Double, "abcdefghi")), badHeader);
}

TEST(BinaryReader, AStringWithANulIsRefused) {
    EXPECT_EQ(refusal(record(counting, KELKind_String, bytes("a\0b"))), badHeader);
    EXPECT_EQ(refusal(record(counting, KELKind_String, bytes("\0"))), badHeader);
}

TEST(BinaryReader, AnEmptyNameIsRefused) {
    EXPECT_EQ(refusal(record(counting, KELKind_Struct, variable("", intRecord(codeOf(1), 1)))),
              badHeader);
}

TEST(BinaryReader, ANameWithAQuoteIsRefused) {
    EXPECT_EQ(refusal(record(counting, KELKind_Struct, variable("a\"", intRecord(codeOf(1), 1)))),
              badHeader);
}

TEST(BinaryReader, WhatRunsPastItsContainerIsRefused) {
    const std::string element = intRecord(codeOf(1), 1);
    for (std::size_t room = 1; room < element.size(); ++room) {
        EXPECT_EQ(refusal(prefix(counting, KELKind_Array, room) + element), badHeader) << room;
    }
}

TEST(BinaryReader, AReferenceThatRunsPastItsContainerIsRefused) {
    const std::string records = intRecord(codeOf(1), 1);
    const std::string array =
        prefix(counting, KELKind_Array, records.size() + 23) + records + reference(codeOf(1));
    EXPECT_EQ(refusal(array), badHeader);
}

TEST(BinaryReader, ANameThatRunsPastItsContainerIsRefused) {
    EXPECT_EQ(refusal(prefix(counting, KELKind_Struct, 3) + "abcdef"), badHeader);
    EXPECT_EQ(refusal(prefix(counting, KELKind_Struct, 4) + bytes("abc\0") + intRecord(codeOf(1), 1)),
              badHeader);
}

TEST(BinaryReader, AContainerThatRunsPastItsContainerIsRefused) {
    const std::string inner = prefix(codeOf(1), KELKind_Array, 100);
    EXPECT_EQ(refusal(prefix(counting, KELKind_Array, inner.size()) + inner + std::string(200, 'x')),
              badHeader);
}

// ---- Lengths that lie --------------------------------------------------------------------------

TEST(BinaryReader, ALyingLengthCostsOnlyWhatIsThere) {
    for (const int32_t kind : {KELKind_MemBlock, KELKind_String, KELKind_Array, KELKind_Struct}) {
        const AllocationBudget budget(1 << 20);
        EXPECT_EQ(cutShort(prefix(counting, kind, 0x7FFFFFFF)),
                  "BinaryDataInput::JReadString(). EOF reached.");
    }
}

TEST(BinaryReader, ALengthNoValueCanHaveIsRefused) {
    for (const uint64_t length : {uint64_t{0x80000000}, uint64_t{1} << 62, UINT64_MAX}) {
        EXPECT_EQ(refusal(prefix(counting, KELKind_MemBlock, length) + "abc"), badHeader);
        EXPECT_EQ(refusal(prefix(counting, KELKind_String, length) + "abc"), badHeader);
    }
    EXPECT_EQ(refusal(prefix(counting, KELKind_Array, UINT64_MAX) + intRecord(codeOf(1), 1)),
              badHeader);
}

TEST(BinaryReader, AContainerMayPromiseMoreThanTheInputHas) {
    EXPECT_EQ(cutShort(prefix(counting, KELKind_Array, uint64_t{1} << 62) + intRecord(codeOf(1), 1)),
              "BinaryDataInput::JReadString(). EOF reached.");
}

TEST(BinaryReader, NoMemoryForAPayloadIsOutOfMemory) {
    const std::string records = record(counting, KELKind_MemBlock, std::string(1 << 20, 'x'));
    BinaryInput input(records);
    std::string message;
    {
        const AllocationBudget budget(2 << 20);
        message = thrownMessage<KELOutOfMemoryException>([&] { input.read(); });
    }
    EXPECT_EQ(message, "Out of memory!");
}

// ---- Input cut short ---------------------------------------------------------------------------

TEST(BinaryReader, InputCutShortTellsWhichFieldIsMissing) {
    const std::string whole = intRecord(counting, 5);
    const auto messageAt = [&](std::size_t size) { return cutShort(whole.substr(0, size)); };
    EXPECT_EQ(messageAt(0), "BinaryDataInput::JReadString(). EOF reached.");
    EXPECT_EQ(refusal(whole.substr(0, 1)), badHeader); // "K" is a whole string, and not the magic
    EXPECT_EQ(refusal(whole.substr(0, 2)), badHeader);
    EXPECT_EQ(messageAt(3), "BinaryDataInput::JRead128(). EOF reached.");
    EXPECT_EQ(messageAt(19), "BinaryDataInput::JRead128(). EOF reached.");
    EXPECT_EQ(messageAt(20), "BinaryDataInput::JRead32(). EOF reached.");
    EXPECT_EQ(messageAt(24), "BinaryDataInput::JRead16(). EOF reached.");
    EXPECT_EQ(messageAt(26), "BinaryDataInput::JRead64(). EOF reached.");
    EXPECT_EQ(messageAt(34), "BinaryDataInput::JRead32(). EOF reached.");
    EXPECT_EQ(messageAt(37), "BinaryDataInput::JRead32(). EOF reached.");
}

TEST(BinaryReader, InputCutShortInsideAPayload) {
    EXPECT_EQ(cutShort(prefix(counting, KELKind_Boolean, 1)),
              "BinaryDataInput::JRead8(). EOF reached.");
    EXPECT_EQ(cutShort(prefix(counting, KELKind_Double, 8) + "abcdefg"),
              "BinaryDataInput::JRead64(). EOF reached.");
    EXPECT_EQ(cutShort(prefix(counting, KELKind_String, 3) + "ab"),
              "BinaryDataInput::JReadString(). EOF reached.");
    EXPECT_EQ(cutShort(prefix(counting, KELKind_MemBlock, 3) + "ab"),
              "BinaryDataInput::JReadString(). EOF reached.");
    EXPECT_EQ(cutShort(prefix(counting, KELKind_Struct, 100) + "nam"),
              "BinaryDataInput::JReadString(). EOF reached.");
    EXPECT_EQ(cutShort(prefix(counting, KELKind_Struct, 100) + bytes("nam\0")),
              "BinaryDataInput::JReadString(). EOF reached.");
}

TEST(BinaryReader, InputMayComeInPieces) {
    const std::string records =
        record(counting, KELKind_Struct,
               variable("name", intRecord(codeOf(1), 5)) +
                   variable("text", record(codeOf(2), KELKind_String, std::string(3000, 't'))));
    for (const int32_t piece : {1, 2, 7, 33, 1000}) {
        auto* medium = new PieceStream(records);
        medium->largestPiece = piece;
        EXPECT_EQ(binaryOf(BinaryInput(medium).read()), records) << piece;
    }
}

// ---- After a failed read -----------------------------------------------------------------------

TEST(BinaryReaderAfterAFailure, NoValueOfThatReadIsReferredTo) {
    const std::string failing = prefix(counting, KELKind_Array, 38 + 38) + intRecord(codeOf(1), 1) +
                                prefix(codeOf(2), KELKind_Int, 4, 7);
    BinaryInput input(failing + reference(counting) + reference(codeOf(1)));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), badHeader);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), badCode);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), badCode);
}

TEST(BinaryReaderAfterAFailure, EarlierValuesStillAre) {
    BinaryInput input(intRecord(codeOf(1), 1) + prefix(codeOf(2), KELKind_Int, 4, 7) +
                      reference(codeOf(1)));
    const auto first = input.read();
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), badHeader);
    EXPECT_EQ(input.read().get(), first.get());
}

TEST(BinaryReaderAfterAFailure, AnEarlierValueIsNotReplacedByAHalfReadOne) {
    BinaryInput input(record(counting, KELKind_Array, intRecord(codeOf(1), 1)) +
                      prefix(counting, KELKind_Array, 38) + prefix(codeOf(2), KELKind_Int, 4, 7) +
                      reference(counting));
    const auto first = input.read();
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), badHeader);
    const auto again = input.read();
    EXPECT_EQ(again.get(), first.get());
    EXPECT_EQ(asArray(again).getCount(), 1);
}

TEST(BinaryReaderAfterAFailure, HalfReadLoopsAreFreed) {
    const std::string loop = reference(counting);
    const std::string failing = prefix(counting, KELKind_Array, loop.size() + 34) + loop +
                                prefix(codeOf(2), KELKind_Int, 4, 7);
    EXPECT_EQ(refusal(failing), badHeader);
}

// ---- Single numbers ----------------------------------------------------------------------------

TEST(TypedBinaryInput, NumbersAreLittleEndian) {
    BinaryInput input(bytes("\xFF\2\1\4\3\2\1\x8\7\6\5\4\3\2\1\0\0\0\0\0\0\xF0\x3F"));
    uint64_t wide = 0;
    EXPECT_EQ(input->JRead8(), -1);
    EXPECT_EQ(input->JRead16(), 0x0102);
    EXPECT_EQ(input->JRead32(), 0x01020304);
    EXPECT_EQ(&input->JRead64(wide), &wide);
    EXPECT_EQ(wide, 0x0102030405060708U);
    EXPECT_EQ(input->JReadDouble(), 1.0);
}

TEST(TypedBinaryInput, A128BitValueAndAString) {
    BinaryInput input(codeBytes(counting) + bytes("ab\0"));
    JHashCode wide;
    EXPECT_EQ(input->JRead128(wide), counting);
    EXPECT_STREQ(Held<JString>(input->JReadString())->chars(), "ab");
}

TEST(TypedBinaryInput, EachTellsTheEndByItsName) {
    uint64_t wide = 0;
    JHashCode wider;
    const auto end = [](const auto& operation) {
        BinaryInput input("");
        return thrownMessage<JEOFException>([&] { operation(input); });
    };
    EXPECT_EQ(end([](auto& in) { in->JRead8(); }), "BinaryDataInput::JRead8(). EOF reached.");
    EXPECT_EQ(end([](auto& in) { in->JRead16(); }), "BinaryDataInput::JRead16(). EOF reached.");
    EXPECT_EQ(end([](auto& in) { in->JRead32(); }), "BinaryDataInput::JRead32(). EOF reached.");
    EXPECT_EQ(end([&](auto& in) { in->JRead64(wide); }), "BinaryDataInput::JRead64(). EOF reached.");
    EXPECT_EQ(end([&](auto& in) { in->JRead128(wider); }),
              "BinaryDataInput::JRead128(). EOF reached.");
    EXPECT_EQ(end([](auto& in) { in->JReadString(); }),
              "BinaryDataInput::JReadString(). EOF reached.");
    EXPECT_EQ(end([](auto& in) { in->JReadDouble(); }), "BinaryDataInput::JRead64(). EOF reached.");
}

TEST(TypedBinaryInput, RawBytesStandBetweenRecords) {
    BinaryInput input("<" + intRecord(counting, 5) + ">>>");
    uint8_t buffer[4] = {};
    EXPECT_EQ(input->JRead(), '<');
    EXPECT_EQ(input.read()->toInt(), 5);
    EXPECT_EQ(input->JRead(buffer, 0, 4), 3);
    EXPECT_EQ(input->JRead(), -1);
}

} // namespace
