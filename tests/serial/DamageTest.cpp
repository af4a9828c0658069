// Tests damaged input: every beginning of the sample files, and changes of every byte in them. The
// readers accept or refuse it and use little memory. Accepted values are written and read again.
#include "support/AllocationFailure.h"
#include "support/PieceStream.h"
#include "support/Records.h"
#include "support/SameTree.h"
#include "support/Thrown.h"
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <bit>
#include <gtest/gtest.h>
#include <list>

using namespace kel::test;

namespace {

constexpr std::size_t memoryLimit = 64 * 1024 * 1024;

// ---- The samples -------------------------------------------------------------------------------

const std::string textSample =
    "/* all */ // that text can be\r\n"
    "#define ON true\n"
    "#define PAIR [ ON \"on\" ]\n"
    "{ @type = 8, @hashCode = 3F2504E0-4F89-11D3-9A0C-0305E82C3301\n"
    "\t9lives = -12\n"
    "\thex = 0x1F\n"
    "\tnumber = 12.5\n"
    "\t\"two words\" = \"a\tb\"\n"
    "\tnothing = NULL\n"
    "\tguid = 12345678-4F89-11D3-9A0C-0305E82C3302\n"
    "\tpair = PAIR\n"
    "\tmanaged = (\n"
    "\t\t1F2504E0-4F89-11D3-9A0C-0305E82C3303 = [ 1 2.5 ]\n"
    "\t)\n"
    "\tagain = REF 1F2504E0-4F89-11D3-9A0C-0305E82C3303\n"
    "\tlist = <\n"
    "\t\t/* keys: */ [ \"k\" ]\n"
    "\t\t/* values: */ [ 7 ]\n"
    ">\n"
    "\tchecked = { @type = 50\n"
    "\t\t@desc = { @type = 51, @hashCode = 5F2504E0-4F89-11D3-9A0C-0305E82C3304\n"
    "\t\t\tx = { @type = 52\n"
    "\t\t\t\ttype = 1\n"
    "\t\t\t}\n\n"
    "\t\t}\n\n"
    "\t\tx = 5\n"
    "\t}\n\n"
    "}\n"
    "[ ]\n";

/// Returns an identity that differs in every byte from those of other numbers, so that one changed
/// byte never makes two of them equal.
JHashCode wideCode(uint32_t number) {
    const uint32_t word = number * 0x01010101U;
    return JHashCode(word, word ^ 0x33333333U, word ^ 0x55555555U, word ^ 0x0F0F0F0FU);
}

const std::string binarySample =
    record(
        wideCode(1), KELKind_Struct,
        variable("array", record(wideCode(2), KELKind_Array,
                                 intRecord(wideCode(3), -5) + reference(wideCode(3)) +
                                     reference(wideCode(1)))) +
            variable("block", record(wideCode(4), KELKind_MemBlock, bytes("\0\1\2"))) +
            variable("double", record(wideCode(5), KELKind_Double, bytes("\0\0\0\0\0\0\xF8\x3F"))) +
            variable("nothing", reference(JHashCode())) +
            variable("string", record(wideCode(6), KELKind_String, "text")) +
            variable("truth", record(wideCode(7), KELKind_Boolean, bytes("\1"))) +
            variable("zero", record(JHashCode(), KELKind_Struct, ""))) +
    reference(wideCode(6));

// ---- Reading input that can be damaged ---------------------------------------------------------

/// The roots of an input up to its end or the first refusal. Values that contain themselves are
/// taken apart at the end.
template <class Stream> class Roots {
public:
    explicit Roots(const std::string& bytes) {
        const AllocationBudget budget(memoryLimit);
        Input<Stream> input(bytes);
        while (next(input)) {
        }
    }
    ~Roots() {
        for (const HeldValue& root : roots_) {
            takeApart(*root);
        }
    }
    Roots(const Roots&) = delete;
    Roots& operator=(const Roots&) = delete;

    const std::list<HeldValue>& all() const { return roots_; }
    bool areIntact() const { return atEnd_; }

private:
    bool next(Input<Stream>& input) {
        try {
            if (HeldValue root = input.read()) {
                roots_.push_back(std::move(root));
            }
            return true;
        } catch (KELIOException* failure) {
            failure->release();
        } catch (KELRenameException* failure) {
            failure->release();
        } catch (KELOutOfMemoryException* failure) {
            failure->release();
        } catch (KELEOFException* failure) {
            failure->release();
            atEnd_ = true;
        } catch (const JEOFException&) {
            atEnd_ = true;
        } catch (const TokenizerException&) {
        }
        return false;
    }

    std::list<HeldValue> roots_;
    bool atEnd_ = false;
};

using TextRoots = Roots<KELStringInputStream_Impl>;
using BinaryRoots = Roots<KELBinaryInputStream_Impl>;

/// Reads a text, then writes the accepted roots and reads them again. \return the number of roots
std::size_t surviveText(const std::string& text) {
    const TextRoots roots(text);
    for (const HeldValue& root : roots.all()) {
        const std::string written = textOf(root);
        const auto again = read(written);
        EXPECT_TRUE(again->equalsValue(root.get())) << written;
        EXPECT_EQ(textOf(again), written);
    }
    return roots.all().size();
}

std::size_t surviveBinary(const std::string& records) {
    const BinaryRoots roots(records);
    for (const HeldValue& root : roots.all()) {
        const std::string written = binaryOf(root);
        const BinaryRoots again(written);
        EXPECT_EQ(differenceOf(*again.all().front(), *root, Kept::inBinary), "");
        EXPECT_EQ(binaryOf(again.all().front()), written);
    }
    return roots.all().size();
}

/// Gives every byte other values: each single bit flipped, and a quarter of all values. The quarter
/// differs from place to place.
template <class Survive> void damageEveryByte(const std::string& sample, const Survive& survive) {
    std::string damaged = sample;
    for (std::size_t place = 0; place < sample.size(); ++place) {
        for (unsigned change = 1; change < 256; ++change) {
            if (!std::has_single_bit(change) && (change + place) % 4 != 0) {
                continue;
            }
            damaged[place] = static_cast<char>(static_cast<unsigned char>(sample[place]) ^ change);
            survive(damaged);
            ASSERT_FALSE(::testing::Test::HasFailure()) << "byte " << place << " ^ " << change;
        }
        damaged[place] = sample[place];
    }
}

/// Reads records up to the end of the medium. Returns a line for each read: how and where it ended,
/// and the value.
std::string outcomesOf(JInputStream* medium) {
    std::string outcomes;
    std::list<HeldValue> roots;
    BinaryInput input(medium);
    for (bool atEnd = false; !atEnd;) {
        HeldValue root;
        const std::string message = thrownMessage<JEOFException>([&] { root = input.read(); });
        atEnd = message.starts_with("BinaryDataInput");
        outcomes += message + " at " + std::to_string(input->JTell());
        if (root) {
            outcomes += " " + binaryOf(root);
            roots.push_back(std::move(root));
        }
        outcomes += "\n";
    }
    for (const HeldValue& root : roots) {
        takeApart(*root);
    }
    return outcomes;
}

/// Checks that records have the same outcomes when their fields arrive one by one from a pipe.
void readFieldByField(const std::string& records) {
    auto* pipe = new PieceStream(records);
    pipe->seekable = false;
    EXPECT_EQ(outcomesOf(pipe),
              outcomesOf(new StringReader(records.data(), static_cast<int64_t>(records.size()))));
}

// ---- Tests -------------------------------------------------------------------------------------

TEST(Damage, TheSamplesAreReadWhole) {
    EXPECT_EQ(surviveText(textSample), 2U);
    EXPECT_TRUE(TextRoots(textSample).areIntact());
    EXPECT_EQ(surviveBinary(binarySample), 2U);
    EXPECT_TRUE(BinaryRoots(binarySample).areIntact());
}

TEST(Damage, EveryBeginningOfATextIsReadOrRefused) {
    for (std::size_t size = 0; size < textSample.size(); ++size) {
        EXPECT_LE(surviveText(textSample.substr(0, size)), 2U) << size;
    }
}

TEST(Damage, EveryBeginningOfARecordIsRefused) {
    const std::size_t first = binarySample.size() - reference(wideCode(6)).size();
    for (std::size_t size = 0; size < binarySample.size(); ++size) {
        EXPECT_EQ(surviveBinary(binarySample.substr(0, size)), size < first ? 0U : 1U) << size;
    }
}

TEST(Damage, AChangeOfAnyByteOfATextIsReadOrRefused) {
    damageEveryByte(textSample, surviveText);
}

TEST(Damage, AChangeOfAnyByteOfARecordIsReadOrRefused) {
    damageEveryByte(binarySample, surviveBinary);
}

TEST(Damage, FieldsThatArriveOneByOneAreReadAlike) {
    damageEveryByte(binarySample, readFieldByField);
    for (std::size_t size = 0; size < binarySample.size(); ++size) {
        readFieldByField(binarySample.substr(0, size));
    }
}

TEST(Damage, EveryByteLeftOutOrDoubledIsReadOrRefused) {
    for (std::size_t place = 0; place < textSample.size(); ++place) {
        surviveText(std::string(textSample).erase(place, 1));
        surviveText(std::string(textSample).insert(place, 1, textSample[place]));
    }
    for (std::size_t place = 0; place < binarySample.size(); ++place) {
        surviveBinary(std::string(binarySample).erase(place, 1));
        surviveBinary(std::string(binarySample).insert(place, 1, binarySample[place]));
    }
}

TEST(Damage, TextWithBytesOfEveryKindIsReadOrRefused) {
    const std::string pieces = "[]{}()<>=#@\"/*-.0x19aF \n\t,nulltrueREFdefine\\\xFF";
    uint64_t state = 1;
    for (int i = 0; i < 50000; ++i) {
        std::string text = "[ #define A [ 1 ]\n";
        for (int length = 0; length < 24; ++length) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            text.push_back(pieces[static_cast<uint32_t>(state >> 33) % pieces.size()]);
        }
        surviveText(text);
        ASSERT_FALSE(::testing::Test::HasFailure()) << text;
    }
}

} // namespace
