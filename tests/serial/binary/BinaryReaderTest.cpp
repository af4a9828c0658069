// The input that the binary reader accepts.
#include "serial/binary/BinaryRefusals.h"
#include "support/Bytes.h"
#include "support/Kinds.h"
#include "support/PieceStream.h"
#include "support/Records.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

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
    const auto value = readBinary(
        record(counting, KELKind_Struct,
               variable(name, intRecord(codeOf(1), 1)) + variable("a", intRecord(codeOf(2), 2))));
    EXPECT_EQ(at(value, name.c_str())->toInt(), 1);
    EXPECT_EQ(at(value, "a")->toInt(), 2);
}

TEST(BinaryReader, OfTwoEqualNamesInAStructTheLastWins) {
    const auto value = readBinary(
        record(counting, KELKind_Struct,
               variable("a", intRecord(codeOf(1), 1)) + variable("b", intRecord(codeOf(2), 2)) +
                   variable("a", intRecord(codeOf(3), 3)) + variable("b", reference(JHashCode()))));
    EXPECT_EQ(asStruct(value).getCount(), 2);
    EXPECT_EQ(at(value, "a")->toInt(), 3);
    EXPECT_EQ(at(value, "b"), nullptr);
}

TEST(BinaryReader, AReplacedValueCanBeReferredTo) {
    const auto value = readBinary(record(counting, KELKind_Struct,
                                         variable("a", intRecord(codeOf(1), 1)) +
                                             variable("a", intRecord(codeOf(2), 2)) +
                                             variable("b", reference(codeOf(1)))));
    EXPECT_EQ(at(value, "b")->toInt(), 1);
}

TEST(BinaryReader, ReplacedLoopsAreFreedWithTheStream) {
    const std::string zero = record(JHashCode(), KELKind_Array, reference(codeOf(1)));
    const std::string loop = record(codeOf(1), KELKind_Array, zero);
    BinaryInput input(record(counting, KELKind_Struct,
                             variable("a", loop) + variable("a", intRecord(codeOf(2), 2))));
    EXPECT_EQ(asStruct(input.read()).getCount(), 1);
}

TEST(BinaryReader, FreeingALoopWithTheStreamCallsNoObserver) {
    Watcher watcher([] { throw 1; });
    {
        const std::string inner = record(codeOf(1), KELKind_Array, reference(counting));
        BinaryInput input(record(counting, KELKind_Array, inner));
        const HeldValue root = input.read();
        watch(root.get(), watcher);
    }
    EXPECT_EQ(watcher.calls(), 0);
}

TEST(BinaryReader, AReplacedLoopThatTheHostHoldsIsNotTouched) {
    const std::string inside = record(codeOf(1), KELKind_Array, reference(codeOf(1)));
    const std::string records = record(counting, KELKind_Struct,
                                       variable("a", record(codeOf(2), KELKind_Array, inside)) +
                                           variable("a", intRecord(codeOf(3), 2))) +
                                record(codeOf(4), KELKind_Array, reference(codeOf(2)));
    HeldValue held;
    {
        BinaryInput input(records);
        input.read();
        held = input.read();
    }
    const TakeApart atEnd(held.get());
    ASSERT_EQ(asArray(at(held, 0)).getCount(), 1);
    EXPECT_EQ(asArray(asArray(at(held, 0)).getVar(0)).getCount(), 1);
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
    const auto value =
        readBinary(record(counting, KELKind_Array,
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
    const auto value = readBinary(record(
        counting, KELKind_Struct, variable("a", zero) + variable("b", reference(JHashCode()))));
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
    back->release(); // the value that getVar returned
    EXPECT_EQ(binaryOf(back), binaryOf(loop));
}

TEST(BinaryReader, TheByteOrderOfSingleNumbersIsNotThatOfRecords) {
    BinaryInput input(new PieceStream(intRecord(counting, 5)));
    EXPECT_EQ(input->getByteOrder(), 1);
    input->setByteOrder(0);
    EXPECT_EQ(input->getByteOrder(), 0);
    EXPECT_EQ(input.read()->toInt(), 5);
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
    EXPECT_EQ(end([&](auto& in) { in->JRead64(wide); }),
              "BinaryDataInput::JRead64(). EOF reached.");
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
