// The text reader. A text is read or refused, with the memory that its page promises. Its values
// are read token by token and at once alike, in pieces of any size, and survive writing and
// reading.
#include "Carried.h"
#include "Roots.h"
#include "serial/text/TextTreeReader.h"
#include "support/AllocationFailure.h"
#include "support/PieceStream.h"
#include "support/SameTree.h"

using namespace kel;
using namespace kel::fuzz;

namespace {

/// Returns the bytes that a stream may allocate for a text, including those that it frees again.
std::size_t memoryFor(std::string_view text) {
    constexpr std::size_t forTheStream = 256 * 1024;
    // The page states what is in use at one time. Lists that grow double the sum of all
    // allocations.
    const std::size_t atOnce = text.find("define") == std::string_view::npos
                                   ? 512 * text.size()
                                   : 2000 * text.size() + std::size_t{34} * 1000 * 1000;
    return forTheStream + 2 * atOnce;
}

/// A stream of the text, read root value by root value, one way or the other.
class Reading {
public:
    Reading(const std::string& text, int32_t largestPiece, bool literally)
        : source_(streamOf(text, largestPiece)) {
        source_.readLiterally(literally);
    }

    Outcome next() {
        return outcomeOf([this] { return HeldValue(TextTreeReader(source_, known_).read()); });
    }

    int64_t position() { return source_.input().position(); }

private:
    static JPointer<JInputStream> streamOf(const std::string& text, int32_t largestPiece) {
        auto* stream = new PieceStream(text);
        stream->largestPiece = largestPiece;
        return JPointer<JInputStream>(stream);
    }

    TextSource source_;
    ValueTable known_;
};

void requireSameRoots(const HeldValue& got, const HeldValue& expected) {
    require(static_cast<bool>(got) == static_cast<bool>(expected), "both ways read a value");
    if (got) {
        requireSame(test::differenceOf(*got, *expected, test::Kept::inText), "",
                    "both ways read the same value");
    }
}

/// Reads on after every failure, both ways at once. Every failed read consumes something.
void readBothWays(const std::string& text) {
    constexpr int mostFailures = 12; // a look at everything up to the end can follow each of them
    const auto piece = static_cast<int32_t>(1 + text.size() % 17);
    Reading literal(text, INT32_MAX, true);
    Reading plain(text, piece, false);
    for (int failures = 0; failures < mostFailures;) {
        const int64_t before = literal.position();
        const Outcome expected = literal.next();
        const Outcome got = plain.next();
        requireSame(got.message, expected.message, "both ways fail with the same message");
        require(plain.position() == literal.position(), "both ways end at the same place");
        requireSameRoots(got.root, expected.root);
        if (expected.hasEnded) {
            return;
        }
        require(literal.position() > before, "every read consumes something or reports the end");
        failures += expected.message.empty() ? 0 : 1;
    }
}

void survive(const HeldValue& root) {
    const Carried facts = carried(*root);
    if (!facts.isSmall) {
        return;
    }
    const std::string written = test::textOf(root);
    Roots again;
    test::TextInput input(written);
    again.readAll(input);
    require(again.hasEnded() && again.all().size() == 1, "what was written is read", written);
    if (facts.byText) {
        requireSame(test::textOf(again.all().front()), written, "the text stays the same");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Roots roots;
    {
        const test::AllocationBudget memory(memoryFor(text));
        test::TextInput input(text);
        roots.readAll(input);
    }
    require(!roots.isOutOfMemory(), "the text takes no more memory than promised");
    requireExactCounts(roots.all());
    for (const HeldValue& root : roots.all()) {
        survive(root);
    }
    readBothWays(text);
    return 0;
}
