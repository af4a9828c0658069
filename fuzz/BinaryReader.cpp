// The binary reader. Records are read or refused, with the memory that their page promises, whether
// they arrive at once or from a pipe. The values survive writing and reading with their identities
// and their sharing.
#include "Carried.h"
#include "Roots.h"
#include "support/AllocationFailure.h"
#include "support/PieceStream.h"
#include "support/SameTree.h"

using namespace kel;
using namespace kel::fuzz;

namespace {

/// Returns the bytes that a stream may allocate for records, including those that it frees again.
std::size_t memoryFor(std::size_t size) {
    return 20 * size + 80 * 1024;
}

constexpr int mostReads = 24; // failures are slow

/// Reads on after failures and returns a line for each read: how it ended, where, and the
/// value.
std::string outcomesOf(JInputStream* medium) {
    std::string outcomes;
    std::list<HeldValue> roots;
    test::BinaryInput input(medium);
    int reads = 0;
    for (bool hasEnded = false; !hasEnded && reads < mostReads; ++reads) {
        const int64_t before = input->JTell();
        Outcome outcome = outcomeOf([&input] { return input.read(); });
        hasEnded = outcome.hasEnded;
        require(hasEnded || input->JTell() > before, "every read consumes something or ends");
        outcomes += outcome.message + " at " + std::to_string(input->JTell()) + "\n";
        if (outcome.root) {
            outcomes += test::binaryOf(outcome.root) + "\n";
            roots.push_back(std::move(outcome.root));
        }
    }
    for (const HeldValue& root : roots) {
        test::takeApart(*root);
    }
    return outcomes;
}

void readFromAPipe(const std::string& records) {
    auto* pipe = new PieceStream(records);
    pipe->seekable = false;
    pipe->largestPiece = static_cast<int32_t>(1 + records.size() % 5);
    requireSame(outcomesOf(pipe),
                outcomesOf(new StringReader(records.data(), static_cast<int64_t>(records.size()))),
                "a pipe is read as a string is");
}

/// Puts the roots in one array, so that sharing between them is compared too.
HeldValue allOf(const Roots& roots) {
    HeldValue all = test::arrayWith(JHashCode(~0U, ~0U, ~0U, ~0U));
    for (const HeldValue& root : roots.all()) {
        test::asArray(all).addVar(root.get());
    }
    return all;
}

/// Returns the records of all roots in one stream.
std::string recordsOf(const Roots& roots) {
    test::BinaryOutput output;
    for (const HeldValue& root : roots.all()) {
        output.write(root);
    }
    return output.bytes();
}

void survive(const Roots& roots) {
    const std::string written = recordsOf(roots);
    Roots again;
    test::BinaryInput input(written);
    again.readAll(input);
    require(again.hasEnded() && again.all().size() == roots.all().size(),
            "what was written is read");
    requireSame(recordsOf(again), written, "the records stay the same");
    const HeldValue all = allOf(roots);
    if (!carried(*all).hasNamesakes) {
        requireSame(test::differenceOf(*allOf(again), *all, test::Kept::inBinary), "",
                    "binary keeps contents, identities and sharing");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string records(reinterpret_cast<const char*>(data), size);
    Roots roots;
    {
        const test::AllocationBudget memory(memoryFor(size));
        test::BinaryInput input(records);
        roots.readAll(input);
    }
    // A length beyond what a buffer can hold is refused as out of memory too.
    if (roots.isOutOfMemory()) {
        Roots unlimited = rootsOf(records);
        require(unlimited.isOutOfMemory(), "the records take no more memory than promised");
    }
    requireExactCounts(roots.all());
    if (!roots.all().empty()) {
        survive(roots);
    }
    readFromAPipe(records);
    return 0;
}
