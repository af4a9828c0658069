// Reading, writing, copying, comparing and taking over while an allocation fails. The first three
// bytes choose the operation, which allocation fails, and whether all later ones fail too. The rest
// is a text or records. A call either throws out of memory and has changed nothing, or its result
// is the same as ever.
#include "Carried.h"
#include "Roots.h"
#include "Script.h"
#include "meta/KELFactory.h"
#include "support/AllocationFailure.h"
#include "support/FailingSink.h"
#include "support/SameTree.h"

using namespace kel;
using namespace kel::fuzz;

namespace {

/// Which allocations fail.
struct Plan {
    std::size_t allowed;
    bool forGood;
};

/// Runs the action while allocations fail. Nothing but the action allocates meanwhile.
/// \return true if it threw out of memory
template <class Action> bool runsOut(const Plan& plan, const Action& action) {
    const test::FailingAllocation failing(plan.allowed, plan.forGood);
    bool isOut = true;
    try {
        action();
        isOut = false;
    } catch (const std::bad_alloc&) {
    } catch (const JOutOfMemoryException&) {
    } catch (KELOutOfMemoryException* failure) {
        failure->release();
    }
    require(!isOut || failing.hasFailed(), "only a failed allocation makes the call fail");
    return isOut;
}

/// Requires that two reads of the same input ended alike. Identities that were drawn differ.
void requireSameOutcome(const Outcome& got, const Outcome& expected) {
    requireSame(got.message, expected.message, "a read that does not fail is the same as ever");
    require(static_cast<bool>(got.root) == static_cast<bool>(expected.root),
            "a read that does not fail returns the same value");
    if (got.root) {
        requireSame(test::differenceOf(*got.root, *expected.root, test::Kept::inText), "",
                    "a read that does not fail returns the same value");
    }
}

/// Reads the first root value while an allocation fails, then the others.
template <class Stream> void read(const Plan& plan, std::string_view bytes) {
    test::Input<Stream> before(bytes);
    Outcome expected = outcomeOf([&] { return before.read(); });
    test::Input<Stream> input(bytes);
    Roots roots;
    bool hasFailed = false;
    Outcome got = outcomeOf([&] {
        const test::FailingAllocation failing(plan.allowed, plan.forGood);
        try {
            HeldValue root = input.read();
            hasFailed = failing.hasFailed();
            return root;
        } catch (...) {
            hasFailed = failing.hasFailed();
            throw;
        }
    });
    if (hasFailed && got.message == noMessage) {
        require(!expected.message.empty(), "only a refusal is left without its message");
    } else if (got.isOutOfMemory) {
        require(hasFailed || expected.isOutOfMemory, "only a failed allocation makes a read fail");
    } else {
        requireSameOutcome(got, expected);
    }
    for (Outcome* outcome : {&expected, &got}) {
        if (outcome->root) {
            roots.adopt(outcome->root);
        }
    }
    roots.readAll(input); // a stream that ran out of memory once can be read on
}

/// Writes a value while an allocation fails, and once more after that. The sink keeps what it got.
template <class Stream> void write(const Plan& plan, const HeldValue& root) {
    const std::string expected = test::Output<Stream>().write(root).bytes();
    const JPointer<FailingSink> sink(new FailingSink());
    sink->bytes.reserve(2 * expected.size()); // the sink itself never fails
    const JPointer<Stream> stream(new Stream(JPointer<JOutputStream>::share(sink.get())));
    const bool isOut = runsOut(plan, [&] { stream->write(root.get()); });
    const std::string begun = sink->bytes;
    require(isOut || begun == expected, "a write that does not fail is the same as ever");
    if (isOut) {
        stream->write(root.get());
        requireSame(sink->bytes, begun + expected, "a write that failed can be repeated");
    }
    requireSame(test::Output<Stream>().write(root).bytes(), expected,
                "a write does not change the value");
}

void copy(const Plan& plan, const HeldValue& root) {
    HeldValue got;
    const bool isOut = runsOut(plan, [&] { got = HeldValue(KEL_Impl::of(root->copy())); });
    require(isOut != static_cast<bool>(got), "a copy that does not fail returns a value");
    if (got) {
        const HeldValue expected(KEL_Impl::of(root->copy()));
        require(got->equalsValue(expected.get()), "a copy is the same as ever");
    }
}

void compare(const Plan& plan, const HeldValue& root) {
    const HeldValue other(KEL_Impl::of(root->copy()));
    const bool expected = root->equalsValue(other.get());
    bool got = expected;
    runsOut(plan, [&] { got = root->equalsValue(other.get()); });
    require(got == expected, "a comparison is the same as ever");
}

/// Makes an empty value take the contents over.
void takeOver(const Plan& plan, const HeldValue& root) {
    if (root->kind() == KELKind_MemBlock) {
        return; // only a block of the same size can take it over
    }
    const HeldValue target(createValue(root->kind(), nullptr));
    const HeldValue before(KEL_Impl::of(target->copy()));
    const bool isOut = runsOut(plan, [&] { target->assign(root.get()); });
    require(target->equalsValue(isOut ? before.get() : root.get()),
            "a value takes over everything or nothing");
}

/// Does one operation with the value.
void use(int operation, const Plan& plan, const HeldValue& root) {
    const Carried facts = carried(*root);
    if (!facts.isSmall || facts.isCyclic || facts.hasNaN) {
        return;
    }
    switch (operation) {
    case 0:
        write<KELTextOutputStream_Impl>(plan, root);
        break;
    case 1:
        if (facts.byBinary) {
            write<KELBinaryOutputStream_Impl>(plan, root);
        }
        break;
    case 2:
        copy(plan, root);
        break;
    case 3:
        compare(plan, root);
        break;
    default:
        takeOver(plan, root);
    }
}

void run(int operation, const Plan& plan, std::string_view document) {
    if (operation >= 5) {
        isBinary(document) ? read<KELBinaryInputStream_Impl>(plan, document)
                           : read<KELStringInputStream_Impl>(plan, document);
        return;
    }
    const Roots roots = rootsOf(document);
    if (!roots.all().empty()) {
        use(operation, plan, roots.all().front());
        requireExactCounts(roots.all());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr std::size_t everyOne = 0x8000; // instead of one allocation, one after the other
    constexpr std::size_t most = 40;
    Script script(data, size);
    const int operation = script.below(8);
    const std::size_t choice = script.word();
    const std::size_t first = choice < everyOne ? choice / 2 : 0;
    const std::size_t last = choice < everyOne ? first : most;
    for (std::size_t allowed = first; allowed <= last; ++allowed) {
        run(operation, {allowed, choice % 2 == 1}, script.rest());
    }
    return 0;
}
