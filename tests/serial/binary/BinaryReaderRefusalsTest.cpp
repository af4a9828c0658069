// The refusals of the binary reader, and the state after a failed read.
#include "serial/binary/BinaryRefusals.h"
#include "support/AllocationFailure.h"
#include "support/Bytes.h"
#include "support/PieceStream.h"
#include "support/Records.h"
#include "support/Thrown.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

std::string cutShort(const std::string& records) {
    return thrownMessage<JEOFException>([&] { readBinary(records); });
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

TEST(BinaryReader, ANameWithAQuoteIsTheStructsRenameError) {
    const std::string records =
        record(counting, KELKind_Struct, variable("a\"", intRecord(codeOf(1), 1)));
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { readBinary(records); }),
              "KEL_Struct key can't contain a \"");
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
    EXPECT_EQ(
        refusal(prefix(counting, KELKind_Struct, 4) + bytes("abc\0") + intRecord(codeOf(1), 1)),
        badHeader);
}

TEST(BinaryReader, AContainerThatRunsPastItsContainerIsRefused) {
    const std::string inner = prefix(codeOf(1), KELKind_Array, 100);
    EXPECT_EQ(
        refusal(prefix(counting, KELKind_Array, inner.size()) + inner + std::string(200, 'x')),
        badHeader);
}

// ---- Wrong lengths -----------------------------------------------------------------------------

TEST(BinaryReader, ALyingLengthCostsOnlyWhatIsThere) {
    for (const int32_t kind : {KELKind_MemBlock, KELKind_String, KELKind_Array, KELKind_Struct}) {
        const AllocationBudget budget(1 << 20);
        EXPECT_EQ(cutShort(prefix(counting, kind, 0x7FFFFFFF)),
                  "BinaryDataInput::JReadString(). EOF reached.");
    }
}

TEST(BinaryReader, ALengthThatNoBufferCanHaveIsOutOfMemory) {
    for (const uint64_t length : {uint64_t{0x80000000}, uint64_t{1} << 62, UINT64_MAX}) {
        for (const int32_t kind : {KELKind_MemBlock, KELKind_String}) {
            EXPECT_EQ(thrownMessage<KELOutOfMemoryException>(
                          [&] { readBinary(prefix(counting, kind, length) + "abc"); }),
                      "Out of memory!");
        }
    }
}

TEST(BinaryReader, ALengthThatNoBufferCanHaveIsRefusedInsideAContainer) {
    for (const uint64_t room : {uint64_t{100}, uint64_t{1} << 62, UINT64_MAX}) {
        const std::string array = prefix(counting, KELKind_Array, room);
        EXPECT_EQ(refusal(array + prefix(codeOf(1), KELKind_MemBlock, 0x80000000)), badHeader);
        EXPECT_EQ(refusal(array + prefix(codeOf(1), KELKind_String, UINT64_MAX)), badHeader);
        EXPECT_EQ(refusal(array + prefix(codeOf(1), KELKind_Struct, UINT64_MAX)), badHeader);
    }
}

TEST(BinaryReader, AContainerMayPromiseMoreThanTheInputHas) {
    for (const uint64_t length : {uint64_t{1} << 62, uint64_t{1} << 63, UINT64_MAX}) {
        EXPECT_EQ(cutShort(prefix(counting, KELKind_Array, length) + intRecord(codeOf(1), 1)),
                  "BinaryDataInput::JReadString(). EOF reached.");
        EXPECT_EQ(cutShort(prefix(counting, KELKind_Struct, length)),
                  "BinaryDataInput::JReadString(). EOF reached.");
    }
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
    EXPECT_EQ(refusal(whole.substr(0, 1)), badHeader); // "K" is a whole string, but not the magic
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

} // namespace
