// Tests media and memory that fail at every possible moment.
#include "support/AllocationFailure.h"
#include "support/FailingSink.h"
#include "support/PieceStream.h"
#include "support/Records.h"
#include "support/TemporaryFile.h"
#include "support/Thrown.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <cstdlib>
#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// Returns a value whose text and record take several writes.
HeldValue largeValue() {
    auto value = arrayOf();
    for (int i = 0; i < 20000; ++i) {
        asArray(value).addInt(i);
    }
    return value;
}

/// An output stream over a sink that fails.
template <class Stream> struct Failing {
    Failing()
        : sink(new FailingSink), stream(new Stream(JPointer<JOutputStream>::share(sink.get()))) {}

    JPointer<FailingSink> sink;
    JPointer<Stream> stream;

    std::string write(KEL* value) {
        return thrownMessage<KELIOException>([&] { stream->write(value); });
    }
};

using FailingText = Failing<KELTextOutputStream_Impl>;
using FailingBinary = Failing<KELBinaryOutputStream_Impl>;

// ---- Sinks -------------------------------------------------------------------------------------

/// Writes to a sink that fails later each time, until it no longer fails. Each failure is reported,
/// and the sink then holds the beginning of the whole.
template <class Output> void failWherever(const HeldValue& value, const std::string& whole) {
    int failures = 0;
    for (int64_t allowed = 0;; ++allowed, ++failures) {
        Output output;
        output.sink->allowed = allowed;
        const std::string message = output.write(value.get());
        EXPECT_EQ(output.sink->bytes, whole.substr(0, output.sink->bytes.size()));
        if (message == "(nothing thrown)") {
            EXPECT_EQ(output.sink->bytes, whole);
            break;
        }
        ASSERT_EQ(message, "FailingSink failed.");
    }
    EXPECT_GE(failures, 3);
}

TEST(FailingSink, FailsATextWriteWithItsMessageWheneverItFails) {
    const auto value = largeValue();
    failWherever<FailingText>(value, textOf(value));
}

TEST(FailingSink, FailsABinaryWriteWithItsMessageWheneverItFails) {
    const auto value = largeValue();
    failWherever<FailingBinary>(value, binaryOf(value));
}

TEST(FailingSink, ATextWriteAfterAFailedOneIsWhole) {
    const auto value = largeValue();
    FailingText output;
    output.sink->allowed = 1;
    EXPECT_EQ(output.write(value.get()), "FailingSink failed.");
    output.sink->bytes.clear();
    EXPECT_EQ(output.write(value.get()), "(nothing thrown)");
    EXPECT_EQ(output.sink->bytes, textOf(value));
}

TEST(FailingSink, ABinaryWriteAfterAFailedOneIsWholeWheneverItFailed) {
    const auto value = largeValue();
    for (int64_t allowed = 0; allowed < 3; ++allowed) {
        FailingBinary output;
        output.sink->allowed = allowed;
        EXPECT_EQ(output.write(value.get()), "FailingSink failed.");
        output.sink->bytes.clear();
        EXPECT_EQ(output.write(value.get()), "(nothing thrown)");
        EXPECT_EQ(output.sink->bytes, binaryOf(value));
    }
}

TEST(FailingSink, AFailureBehindARefusalIsTheOneThatIsThrown) {
    FailingBinary binary;
    binary.sink->allowed = 0;
    EXPECT_EQ(binary.write(guidOf(JHashCode()).get()), "FailingSink failed.");
    FailingText text;
    text.sink->allowed = 0;
    const auto loop = arrayOf();
    asArray(loop).addVar(loop.get());
    EXPECT_EQ(text.write(loop.get()), "FailingSink failed.");
    asArray(loop).removeAllVars();
}

template <class Stream> class TypedWrites : public ::testing::Test {};
using OutputStreams = ::testing::Types<KELTextOutputStream_Impl, KELBinaryOutputStream_Impl>;

struct StreamNames {
    template <class Stream> static std::string GetName(int) {
        return std::is_base_of_v<KELASCIIOutputStream_Impl, Stream> ? "Text" : "Binary";
    }
};
TYPED_TEST_SUITE(TypedWrites, OutputStreams, StreamNames);

TYPED_TEST(TypedWrites, EachReportsAFailureOfTheSink) {
    using Write = void (*)(TypeParam&);
    const Write writes[] = {[](TypeParam& out) { out.JWrite8(1); },
                            [](TypeParam& out) { out.JWrite16(1); },
                            [](TypeParam& out) { out.JWrite32(1); },
                            [](TypeParam& out) { out.JWrite64(uint64_t{1}); },
                            [](TypeParam& out) { out.JWrite128(JHashCode()); },
                            [](TypeParam& out) { out.JWriteString("a"); },
                            [](TypeParam& out) { out.JWriteDouble(1.0); },
                            [](TypeParam& out) { out.JWrite(1); },
                            [](TypeParam& out) { out.JWrite(unsignedBytes("a"), 0, 1); }};
    for (const Write write : writes) {
        Failing<TypeParam> output;
        output.sink->allowed = 0;
        EXPECT_EQ(thrownMessage<KELIOException>([&] { write(*output.stream); }),
                  "FailingSink failed.");
    }
}

// ---- Sources -----------------------------------------------------------------------------------

const std::string sampleText = "{ a = [ 1 2.5 \"x\" ] b = ( 00000000-0000-0000-0000-000000000001 = "
                               "true ) c = NULL }\n";
const std::string sampleRecord =
    record(counting, KELKind_Struct,
           variable("a", record(codeOf(1), KELKind_Array,
                                intRecord(codeOf(2), 5) + reference(codeOf(2)))) +
               variable("b", record(codeOf(3), KELKind_String, "text")));

/// Reads from a medium that fails after the given number of bytes. It delivers them in pieces of
/// the given size.
template <class Stream>
std::string readFailing(const std::string& bytes, std::size_t failsAt, int32_t piece,
                        bool seekable) {
    auto* medium = new PieceStream(bytes);
    medium->failsAt = static_cast<int64_t>(failsAt);
    medium->largestPiece = piece;
    medium->seekable = seekable;
    Input<Stream> input(medium);
    return thrownMessage<KELIOException>([&] { input.read(); });
}

TEST(FailingSource, FailsATextReadWithItsMessageWhereverItFails) {
    for (std::size_t at = 0; at + 1 < sampleText.size(); ++at) {
        for (const bool seekable : {true, false}) {
            ASSERT_EQ(readFailing<KELStringInputStream_Impl>(sampleText, at, 1, seekable),
                      "PieceStream failed.")
                << at;
        }
    }
}

TEST(FailingSource, FailsABinaryReadWithItsMessageWhereverItFails) {
    for (std::size_t at = 0; at < sampleRecord.size(); ++at) {
        for (const bool seekable : {true, false}) {
            ASSERT_EQ(readFailing<KELBinaryInputStream_Impl>(sampleRecord, at, 1, seekable),
                      "PieceStream failed.")
                << at;
        }
    }
}

TEST(FailingSource, BehindTheValueItIsNotAskedIfItHasNoPositions) {
    EXPECT_EQ(
        readFailing<KELBinaryInputStream_Impl>(sampleRecord + "x", sampleRecord.size(), 7, false),
        "(nothing thrown)");
    EXPECT_EQ(readFailing<KELStringInputStream_Impl>(sampleText, sampleText.size() - 1, 7, false),
              "(nothing thrown)");
}

TEST(FailingSource, AfterAFailedBinaryReadOnlyItsCompleteValuesAreReferredTo) {
    const std::size_t elementEnd = sampleRecord.find(intRecord(codeOf(2), 5)) + 38;
    for (std::size_t at = 1; at < sampleRecord.size(); ++at) {
        auto* medium = new PieceStream(sampleRecord);
        medium->failsAt = static_cast<int64_t>(at);
        medium->largestPiece = 1;
        BinaryInput input(medium);
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), "PieceStream failed.");
        medium->data = std::string(at, ' ') + reference(counting) + reference(codeOf(2));
        medium->failsAt = INT64_MAX;
        input->JSeek(static_cast<int64_t>(at));
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }), "Error in KEL hash code.");
        EXPECT_EQ(thrownMessage<KELIOException>([&] { input.read(); }),
                  at < elementEnd ? "Error in KEL hash code." : "(nothing thrown)");
    }
}

TEST(FailingSource, AfterAFailureInsideATokenOfTextTheTokenIsReadWhole) {
    auto* medium = new PieceStream("1234 ");
    medium->failsAt = 2;
    medium->largestPiece = 1;
    TextInput input(medium);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input->JRead32(); }), "PieceStream failed.");
    medium->failsAt = INT64_MAX;
    EXPECT_EQ(input->JRead32(), 1234);
}

TEST(FailingSource, AClosedInputStreamIsAtItsEnd) {
    auto* medium = new PieceStream("12 34");
    medium->seekable = false;
    TextInput input(medium);
    EXPECT_EQ(input->JRead32(), 12);
    input->JClose();
    EXPECT_EQ(input->JRead(), -1);
}

TEST(FailingSource, RawAndTypedReadsReportItToo) {
    const auto failing = [](const auto& operation) {
        auto* medium = new PieceStream("1 2 3 4 5 6 7 8 9");
        medium->failsAt = 0;
        BinaryInput input(medium);
        return thrownMessage<KELIOException>([&] { operation(*input.operator->()); });
    };
    uint64_t wide = 0;
    JHashCode wider;
    uint8_t buffer[4];
    EXPECT_EQ(failing([](KELInputStream& in) { in.JRead(); }), "PieceStream failed.");
    EXPECT_EQ(failing([&](KELInputStream& in) { in.JRead(buffer, 0, 4); }), "PieceStream failed.");
    EXPECT_EQ(failing([](KELInputStream& in) { in.JRead8(); }), "PieceStream failed.");
    EXPECT_EQ(failing([](KELInputStream& in) { in.JRead16(); }), "PieceStream failed.");
    EXPECT_EQ(failing([](KELInputStream& in) { in.JRead32(); }), "PieceStream failed.");
    EXPECT_EQ(failing([&](KELInputStream& in) { in.JRead64(wide); }), "PieceStream failed.");
    EXPECT_EQ(failing([&](KELInputStream& in) { in.JRead128(wider); }), "PieceStream failed.");
    EXPECT_EQ(failing([](KELInputStream& in) { in.JReadDouble(); }), "PieceStream failed.");
    EXPECT_EQ(failing([](KELInputStream& in) { in.JReadString(); }), "PieceStream failed.");
}

// ---- Memory ------------------------------------------------------------------------------------

TEST(OutOfMemory, ATextReadFailsCleanlyAtEveryAllocation) {
    const std::string text =
        "#define N [ 5 ]\n" + sampleText.substr(0, 2) + "n = N " + sampleText.substr(2);
    EXPECT_GT(failEachAllocation([&] { read(text); }), 30U);
}

TEST(OutOfMemory, ABinaryReadFailsCleanlyAtEveryAllocation) {
    EXPECT_GT(failEachAllocation([&] { readBinary(sampleRecord); }), 15U);
}

/// Writes to a sink with room for everything.
template <class Output> std::string writeAmply(const HeldValue& value) {
    Output output;
    output.sink->bytes.reserve(std::size_t{1} << 20);
    output.stream->write(value.get());
    return std::move(output.sink->bytes);
}

TEST(OutOfMemory, ATextWriteFailsCleanlyAtEveryAllocation) {
    const auto value = read(sampleText);
    EXPECT_GT(failEachAllocation([&] { writeAmply<FailingText>(value); }), 3U);
}

TEST(OutOfMemory, ABinaryWriteFailsCleanlyAtEveryAllocation) {
    const auto value = readBinary(sampleRecord);
    EXPECT_GT(failEachAllocation([&] { writeAmply<FailingBinary>(value); }), 5U);
}

TEST(OutOfMemory, AFactoryAnswersNullAtEveryAllocation) {
    const TemporaryFile file("");
    const auto create = [&] {
        DeleteKELOutputStream(CreateKELBinaryOutputStream(file.name()));
        DeleteKELOutputStream(CreateKELTextOutputStream(file.name(), true));
        DeleteKELOutputStream(CreateKELStringOutputStream());
        DeleteKELInputStream(CreateKELBinaryInputStream(file.name()));
        DeleteKELInputStream(CreateKELTextInputStream(file.name()));
        DeleteKELInputStream(CreateKELStringInputStream("1", 1));
    };
    EXPECT_GT(failEachAllocation(create), 20U);
}

/// Returns a value whose record makes the writer allocate memory for more than a few identities:
/// many unshared Ints, then nested containers.
HeldValue wideAndDeepValue() {
    auto inner = arrayOf(intOf(0));
    for (int i = 0; i < 70; ++i) {
        inner = arrayOf(inner);
    }
    auto value = arrayOf();
    for (int i = 0; i < 3000; ++i) {
        asArray(value).addInt(i);
    }
    asArray(value).addVar(inner.get());
    return value;
}

/// A medium whose failures say nothing.
class SilentMedium : public PieceStream {
public:
    SilentMedium() : PieceStream("") {}
    int32_t JRead(uint8_t*, int32_t, int32_t) override {
        throw JIOException(static_cast<const char*>(nullptr));
    }
};

TEST(FailingSource, AFailureWithoutAMessageHasTheGeneralOne) {
    TextInput input(new SilentMedium);
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input->JRead(); }), "General KEL exception.");
}

TEST(OutOfMemory, AnUnfinishedBinaryWriteNeedsNoMemoryToBeForgotten) {
    const auto value = wideAndDeepValue();
    EXPECT_EXIT(
        {
            failEachAllocation([&] { writeAmply<FailingBinary>(value); });
            std::_Exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(OutOfMemory, ABinaryWriteAfterAFailedOneIsWhole) {
    const auto value = wideAndDeepValue();
    const std::string whole = binaryOf(value);
    for (std::size_t allowed = 0; allowed < 40; ++allowed) {
        FailingBinary output;
        output.sink->bytes.reserve(std::size_t{1} << 20);
        try {
            const FailingAllocation failing(allowed);
            output.stream->write(value.get());
            break;
        } catch (KELOutOfMemoryException* failure) {
            failure->release();
            output.sink->bytes.clear();
            output.stream->write(value.get());
            ASSERT_EQ(output.sink->bytes, whole) << allowed;
        }
    }
}

} // namespace
