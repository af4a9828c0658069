// Both formats. Values of one are written in the other and read back. What both carry survives, and
// copies are equal.
#include "Carried.h"
#include "Roots.h"
#include "support/SameTree.h"

using namespace kel;
using namespace kel::fuzz;

namespace {

/// Returns the only value of a text or of records.
Roots readOne(const std::string& bytes) {
    Roots roots = rootsOf(bytes);
    require(roots.hasEnded() && roots.all().size() == 1, "what was written is read");
    return roots;
}

/// Writes with the stream. Returns an empty string if it refuses the value.
template <class Output> std::string writtenOr(const char* refusal, const HeldValue& root) {
    try {
        return Output().write(root).bytes();
    } catch (KELIOException* failure) {
        requireSame(test::messageAndRelease(failure), refusal, "the writer refuses the kind");
        return {};
    }
}

void throughBinary(const HeldValue& root, const Carried& facts) {
    const std::string records = writtenOr<test::BinaryOutput>("General KEL exception.", root);
    // A namesake is stored as a reference, whatever its kind.
    require(records.empty() != facts.byBinary || (facts.hasNamesakes && !facts.byBinary),
            "binary carries exactly its kinds");
    if (!facts.byBinary) {
        return;
    }
    const Roots back = readOne(records);
    const HeldValue& value = back.all().front();
    requireSame(test::binaryOf(value), records, "the records stay the same");
    if (facts.hasNamesakes) {
        return; // the second of them is stored as a reference to the first
    }
    requireSame(test::differenceOf(*value, *root, test::Kept::inBinary), "",
                "binary keeps contents, identities and sharing");
    if (facts.isSmall && facts.byText) {
        requireSame(test::textOf(value), test::textOf(root), "both formats agree");
    }
}

void throughText(const HeldValue& root, const Carried& facts) {
    if (!facts.isSmall) {
        return;
    }
    if (!facts.byText) {
        // Only a value that contains itself is refused. Other texts may not be readable.
        const char* refusal = "Cannot write a value that contains itself.";
        const std::string text = writtenOr<test::TextOutput>(refusal, root);
        require(text.empty() == facts.isCyclic, "text refuses what contains itself");
        return;
    }
    const std::string text = test::textOf(root);
    const Roots back = readOne(text);
    const HeldValue& value = back.all().front();
    requireSame(test::textOf(value), text, "the text stays the same");
    if (facts.byBinary) {
        requireSame(test::textOf(readOne(test::binaryOf(value)).all().front()), text,
                    "both formats agree");
    }
}

/// Copies the value and takes its contents over. Null variables become Ints in copies, so a copy is
/// compared with its own copy.
void copy(const HeldValue& root, const Carried& facts) {
    if (!facts.isSmall || facts.hasNaN) {
        return;
    }
    const HeldValue first(KEL_Impl::of(root->copy()));
    const test::TakeApart later(first.get());
    const HeldValue second(KEL_Impl::of(first->copy()));
    const test::TakeApart latest(second.get());
    require(first->equalsValue(second.get()) && second->equalsValue(first.get()),
            "a copy is equal to its source");
    if (facts.isCyclic) {
        return; // the contents that assign replaces could hold themselves
    }
    second->assign(root.get());
    require(second->equalsValue(root.get()), "a value is equal to what it took over");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const Roots roots = rootsOf({reinterpret_cast<const char*>(data), size});
    for (const HeldValue& root : roots.all()) {
        const Carried facts = carried(*root);
        throughBinary(root, facts);
        throughText(root, facts);
        copy(root, facts);
    }
    requireExactCounts(roots.all());
    return 0;
}
