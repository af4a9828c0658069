// Measures how much memory the bytes of a binary input can take.
#include "support/AllocationFailure.h"
#include "support/Guids.h"
#include "support/Records.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// The limit in docs/binary-format.md on the bytes that reading allocates for each byte of input.
constexpr std::size_t promised = 20;
constexpr std::size_t inputSize = std::size_t{2} << 20;

std::string empty(uint32_t number, int32_t kind) {
    return record(numbered(number), kind, "");
}

/// Returns a root container around enough pieces to make a large input. The pieces are numbered
/// from 1.
template <class Piece> std::string manyOf(int32_t kind, const Piece& piece) {
    std::string payload;
    for (uint32_t number = 1; payload.size() < inputSize; ++number) {
        payload += piece(number);
    }
    return record(JHashCode(1, 0, 0, 0), kind, payload);
}

/// Returns nested containers, the outermost numbered 0. Each payload begins with lead and ends with
/// tail. The innermost begins with seed instead.
std::string nested(int32_t kind, const std::string& lead, const std::string& tail,
                   const std::string& seed = "") {
    std::vector<std::string> openings;
    std::size_t length = 0; // of all containers so far, which the next one encloses
    for (auto number = static_cast<uint32_t>(inputSize / (34 + lead.size() + tail.size()));
         number-- > 0;) {
        const std::string own = length == 0 ? seed : lead;
        openings.push_back(prefix(numbered(number), kind, own.size() + length + tail.size()) + own);
        length += openings.back().size() + tail.size();
    }
    std::string records;
    for (auto opening = openings.rbegin(); opening != openings.rend(); ++opening) {
        records += *opening;
    }
    for (std::size_t i = 0; i < openings.size(); ++i) {
        records += tail;
    }
    return records;
}

/// Returns a different name for each number, as short as possible.
std::string nameOf(uint32_t number) {
    std::string name;
    for (; number > 0; number /= 64) {
        name.push_back(static_cast<char>('0' + number % 64));
    }
    return name;
}

/// Returns the number of bytes that a stream allocates to read the records, freed or not, for each
/// byte of them.
double allocatedPerByte(const std::string& records) {
    constexpr std::size_t budget = std::size_t{1} << 30;
    std::size_t left = 0;
    HeldValue root;
    {
        auto* medium = new StringReader(records.data(), static_cast<int64_t>(records.size()));
        const AllocationBudget allowed(budget);
        {
            BinaryInput input(medium);
            root = input.read();
        }
        left = allowed.left();
    }
    takeApart(*root);
    return static_cast<double>(budget - left) / static_cast<double>(records.size());
}

TEST(BinaryMemory, NoInputTakesMoreThanItsShare) {
    const auto null = reference(JHashCode());
    const std::pair<const char*, std::string> inputs[] = {
        {"empty arrays", manyOf(KELKind_Array, [](uint32_t n) { return empty(n, KELKind_Array); })},
        {"empty structs",
         manyOf(KELKind_Array, [](uint32_t n) { return empty(n, KELKind_Struct); })},
        {"empty strings",
         manyOf(KELKind_Array, [](uint32_t n) { return empty(n, KELKind_String); })},
        {"empty blocks",
         manyOf(KELKind_Array, [](uint32_t n) { return empty(n, KELKind_MemBlock); })},
        {"empty arrays, each referred to",
         manyOf(KELKind_Array,
                [](uint32_t n) { return empty(n, KELKind_Array) + reference(numbered(n)); })},
        {"empty arrays, and a reference at the end",
         manyOf(KELKind_Array,
                [](uint32_t n) {
                    return empty(n, KELKind_Array) +
                           (n == inputSize / 34 ? reference(numbered(n)) : "");
                })},
        {"empty arrays of one identity, each referred to",
         manyOf(KELKind_Array,
                [](uint32_t) { return empty(1, KELKind_Array) + reference(numbered(1)); })},
        {"references", manyOf(KELKind_Array,
                              [](uint32_t n) {
                                  return n == 1 ? intRecord(numbered(1), 1)
                                                : reference(numbered(1));
                              })},
        {"names without values",
         manyOf(KELKind_Struct, [&](uint32_t n) { return variable(nameOf(n), null); })},
        {"names of 16 characters",
         manyOf(KELKind_Struct,
                [&](uint32_t n) { return variable("name567890ab" + nameOf(n + 300000), null); })},
        {"one name again and again",
         manyOf(KELKind_Struct, [](uint32_t n) { return variable("a", empty(n, KELKind_Array)); })},
        {"arrays with one element", manyOf(KELKind_Array,
                                           [](uint32_t n) {
                                               return record(numbered(n), KELKind_Array,
                                                             reference(JHashCode(1, 0, 0, 0)));
                                           })},
        {"a long name", record(numbered(1), KELKind_Struct,
                               variable(std::string(inputSize, 'n'), intRecord(numbered(2), 1)))},
        {"a long string", record(numbered(1), KELKind_String, std::string(inputSize, 's'))},
        {"a long block", record(numbered(1), KELKind_MemBlock, std::string(inputSize, 's'))},
        {"nested arrays", nested(KELKind_Array, "", "")},
        {"nested arrays that refer to the root", nested(KELKind_Array, "", reference(numbered(0)))},
        {"nested arrays around a reference to the root",
         nested(KELKind_Array, "", "", reference(numbered(0)))},
        {"nested structs around a reference to the root",
         nested(KELKind_Struct, variable("a", ""), "", variable("a", reference(numbered(0))))},
        {"nested structs", nested(KELKind_Struct, variable("a", ""), "")},
    };
    for (const auto& [name, records] : inputs) {
        const double share = allocatedPerByte(records);
        EXPECT_LE(share, promised) << name;
    }
}

} // namespace
