// Tests the state after a failed read of the binary reader: the position in the input, and the
// targets of references.
#include "serial/binary/BinaryRefusals.h"
#include "support/AllocationFailure.h"
#include "support/Bytes.h"
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

constexpr const char* noString = "BinaryDataInput::JReadString(). EOF reached.";

/// Returns the message of the exception that a read throws, of any class that a binary reader
/// throws.
std::string failureOf(BinaryInput& input) {
    try {
        input.read();
    } catch (KELException* failure) {
        const std::string message = failure->getMessage();
        failure->release();
        return message;
    } catch (const JEOFException& failure) {
        return Held<JString>(failure.getMessage())->chars();
    }
    return "(nothing thrown)";
}

/// Returns the bytes that a failed read leaves.
std::string rest(BinaryInput& input) {
    std::string out;
    for (int32_t byte = input->JRead(); byte != -1; byte = input->JRead()) {
        out.push_back(static_cast<char>(byte));
    }
    return out;
}

std::string restAfter(const std::string& records, const std::string& message) {
    BinaryInput input(records);
    EXPECT_EQ(failureOf(input), message);
    return rest(input);
}

/// Returns an Int with an unknown version. A read fails after its length.
std::string badRecord() {
    return prefix(codeOf(99), KELKind_Int, 4, 7);
}

/// Returns a container that holds the records and then fails.
std::string failing(const JHashCode& identity, const std::string& records) {
    return prefix(identity, KELKind_Array, records.size() + badRecord().size()) + records +
           badRecord();
}

// ---- The position in the input -----------------------------------------------------------------

TEST(BinaryReaderPosition, ABadMagicIsUsedUpToItsNul) {
    const std::string record = intRecord(counting, 5);
    EXPECT_EQ(restAfter(bytes("KEM\0") + "rest", badHeader), "rest");
    EXPECT_EQ(restAfter(bytes("\0") + record, badHeader), record);
    EXPECT_EQ(restAfter(bytes("KE\0") + record, badHeader), record);
    EXPECT_EQ(restAfter(bytes("KELK\0") + record, badHeader), record);
    EXPECT_EQ(restAfter(std::string(100000, 'x') + bytes("\0") + record, badHeader), record);
    EXPECT_EQ(restAfter("no NUL at all", badHeader), "");
}

TEST(BinaryReaderPosition, ABadMagicOfAnyLengthTakesNoMemory) {
    const std::string text(4 << 20, 'x');
    auto* medium = new PieceStream(text);
    BinaryInput input(medium);
    const AllocationBudget budget(1 << 20);
    EXPECT_EQ(failureOf(input), badHeader);
}

TEST(BinaryReaderPosition, ABadMagicInsideAContainerToo) {
    const std::string element = bytes("x\0") + std::string(32, 'y');
    EXPECT_EQ(restAfter(record(counting, KELKind_Array, element), badHeader), std::string(32, 'y'));
}

TEST(BinaryReaderPosition, ABadVersionKindOrLengthIsUsedUpToThePayload) {
    EXPECT_EQ(restAfter(prefix(counting, KELKind_Int, 4, 7) + "abcd", badHeader), "abcd");
    EXPECT_EQ(restAfter(record(counting, KELKind_guid, "abcd"), badHeader), "abcd");
    EXPECT_EQ(restAfter(record(counting, KELKind_Int, "abc"), badHeader), "abc");
    EXPECT_EQ(restAfter(record(counting, KELKind_Boolean, "abc"), badHeader), "abc");
    EXPECT_EQ(restAfter(record(counting, KELKind_Double, "abc"), badHeader), "abc");
    EXPECT_EQ(
        restAfter(prefix(counting, KELKind_Array, 34) + prefix(codeOf(1), KELKind_Array, 1) + "a",
                  badHeader),
        "a");
}

TEST(BinaryReaderPosition, AStringWithANulIsUsed) {
    EXPECT_EQ(restAfter(record(counting, KELKind_String, bytes("a\0b")) + "rest", badHeader),
              "rest");
}

TEST(BinaryReaderPosition, ABadNameIsUsedWithItsNul) {
    EXPECT_EQ(restAfter(record(counting, KELKind_Struct, bytes("\0rest")), badHeader), "rest");
    EXPECT_EQ(restAfter(record(counting, KELKind_Struct, bytes("a\"\0rest")),
                        "KEL_Struct key can't contain a \""),
              "rest");
}

TEST(BinaryReaderPosition, ANameThatRunsPastItsStructIsUsedUpToTheEndOfTheStruct) {
    EXPECT_EQ(restAfter(prefix(counting, KELKind_Struct, 3) + "abcdef", badHeader), "def");
}

TEST(BinaryReaderPosition, ARecordWithoutRoomInItsContainerIsNotTouched) {
    const std::string element = intRecord(codeOf(1), 1);
    EXPECT_EQ(restAfter(prefix(counting, KELKind_Array, 23) + element, badHeader), element);
    EXPECT_EQ(restAfter(prefix(counting, KELKind_Array, 33) + element, badHeader),
              element.substr(24));
}

TEST(BinaryReaderPosition, AnUnknownReferenceIsUsed) {
    EXPECT_EQ(restAfter(reference(counting) + "rest", badCode), "rest");
}

TEST(BinaryReaderPosition, APayloadWithoutMemoryIsNotTouched) {
    EXPECT_EQ(restAfter(prefix(counting, KELKind_String, UINT64_MAX) + "payload", "Out of memory!"),
              "payload");
    const std::string block = record(counting, KELKind_MemBlock, std::string(1 << 20, 'x'));
    BinaryInput input(block);
    {
        const AllocationBudget budget(2 << 20);
        EXPECT_EQ(failureOf(input), "Out of memory!");
    }
    EXPECT_EQ(rest(input).size(), std::size_t{1} << 20);
}

TEST(BinaryReaderPosition, AnEndOfTheInputIsTheEnd) {
    const std::string whole =
        record(counting, KELKind_Struct,
               variable("name", record(codeOf(1), KELKind_String, "text")) +
                   variable("other", record(codeOf(2), KELKind_Double, "12345678")));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        BinaryInput input(whole.substr(0, size));
        failureOf(input);
        EXPECT_EQ(failureOf(input), noString) << size;
    }
}

TEST(BinaryReaderPosition, AHostThatGoesOnReachesTheEnd) {
    const std::string noise = bytes("KEL\0KEL\0KEL\0\0\0x\0KEL");
    BinaryInput input(noise + intRecord(counting, 5) + failing(codeOf(1), "") + noise);
    std::size_t reads = 0;
    while (failureOf(input) != noString) {
        ASSERT_LT(++reads, std::size_t{1000});
    }
}

// ---- The targets of references -----------------------------------------------------------------

TEST(BinaryReaderAfterAFailure, CompleteValuesAreKept) {
    const std::string complete = record(codeOf(2), KELKind_Array, intRecord(codeOf(1), 5));
    BinaryInput input(failing(counting, complete) + reference(codeOf(2)) + reference(codeOf(1)));
    EXPECT_EQ(failureOf(input), badHeader);
    const auto array = input.read();
    EXPECT_EQ(asArray(array).getCount(), 1);
    EXPECT_EQ(input.read().get(), at(array, 0));
}

TEST(BinaryReaderAfterAFailure, HalfReadContainersAreNot) {
    const std::string inner = failing(codeOf(1), intRecord(codeOf(2), 5));
    BinaryInput input(prefix(counting, KELKind_Array, inner.size()) + inner + reference(counting) +
                      reference(codeOf(1)) + reference(codeOf(2)));
    EXPECT_EQ(failureOf(input), badHeader);
    EXPECT_EQ(failureOf(input), badCode);
    EXPECT_EQ(failureOf(input), badCode);
    EXPECT_EQ(input.read()->toInt(), 5);
}

TEST(BinaryReaderAfterAFailure, ContainersThatLeadToHalfReadOnesAreNot) {
    const std::string direct = record(codeOf(1), KELKind_Array, reference(counting));
    const std::string indirect = record(codeOf(2), KELKind_Array, reference(codeOf(1)));
    const std::string around = record(codeOf(3), KELKind_Array, intRecord(codeOf(4), 4) + indirect);
    const std::string apart = record(codeOf(5), KELKind_Array, reference(codeOf(4)));
    BinaryInput input(failing(counting, direct + around + apart) + reference(codeOf(1)) +
                      reference(codeOf(2)) + reference(codeOf(3)) + reference(codeOf(5)));
    EXPECT_EQ(failureOf(input), badHeader);
    EXPECT_EQ(failureOf(input), badCode);
    EXPECT_EQ(failureOf(input), badCode);
    EXPECT_EQ(failureOf(input), badCode);
    EXPECT_EQ(at(input.read(), 0)->toInt(), 4);
}

TEST(BinaryReaderAfterAFailure, LoopsThatAreCompleteAreKept) {
    const std::string inner = record(codeOf(2), KELKind_Array, reference(codeOf(1)));
    const std::string loop = record(codeOf(1), KELKind_Array, inner);
    BinaryInput input(failing(counting, loop) + reference(codeOf(1)) + reference(codeOf(2)));
    EXPECT_EQ(failureOf(input), badHeader);
    const auto outer = input.read();
    const TakeApart atEnd(outer.get());
    const auto inside = input.read();
    EXPECT_EQ(at(outer, 0), inside.get());
    EXPECT_EQ(at(inside, 0), outer.get());
}

TEST(BinaryReaderAfterAFailure, EarlierValuesStillAre) {
    BinaryInput input(intRecord(codeOf(1), 1) + badRecord() + reference(codeOf(1)));
    const auto first = input.read();
    EXPECT_EQ(failureOf(input), badHeader);
    EXPECT_EQ(input.read().get(), first.get());
}

TEST(BinaryReaderAfterAFailure, AnEarlierValueIsNotReplacedByAHalfReadOne) {
    for (const std::string& before : {std::string(), reference(counting)}) {
        const std::string inner = failing(counting, before);
        BinaryInput input(record(counting, KELKind_Array, intRecord(codeOf(1), 1)) +
                          prefix(counting, KELKind_Array, before.size() + inner.size()) + before +
                          inner + reference(counting));
        const auto first = input.read();
        EXPECT_EQ(failureOf(input), badHeader);
        const auto again = input.read();
        EXPECT_EQ(again.get(), first.get());
        EXPECT_EQ(asArray(again).getCount(), 1);
    }
}

TEST(BinaryReaderAfterAFailure, HalfReadLoopsAreFreed) {
    const std::string back = record(codeOf(1), KELKind_Array, reference(counting));
    const std::string zero = record(JHashCode(), KELKind_Array, reference(counting));
    BinaryInput input(failing(counting, reference(counting) + back + zero));
    EXPECT_EQ(failureOf(input), badHeader);
}

TEST(BinaryReaderAfterAFailure, EachAllocationMayFail) {
    const std::string inner =
        record(codeOf(2), KELKind_Struct,
               variable("a", reference(codeOf(1))) + variable("b", intRecord(codeOf(3), 3)) +
                   variable("a", record(JHashCode(), KELKind_Array, reference(codeOf(2)))));
    const std::string records = record(codeOf(1), KELKind_Array, inner + intRecord(codeOf(3), 3));
    HeldValue first;
    HeldValue second;
    failEachAllocation(
        [&] {
            BinaryInput input(records + reference(codeOf(1)));
            first = input.read();
            second = input.read();
        },
        [&] {
            if (first) {
                takeApart(*first);
            }
            first.clear();
            second.clear();
        });
}

} // namespace
