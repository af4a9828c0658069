// Every operation of streams, with each call of the medium failing and with each allocation
// failing. The operation reports the failure, or ends as ever.
#include "atomicity/MediaOperations.h"
#include "support/AllocationFailure.h"
#include "support/PieceStream.h"
#include "support/ValueStreams.h"

#include <exception>
#include <gtest/gtest.h>

using namespace kel::test;

namespace {

/// A medium for output. Its call after the first `allowed` ones fails, whichever it is.
class FailingMedium final : public JOutputStream {
public:
    int allowed = INT32_MAX;
    int calls = 0;
    bool hasFailed = false;
    std::string bytes;

    void JWrite(int32_t byte) override {
        count();
        bytes += static_cast<char>(byte);
    }
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t size) override {
        count();
        bytes.append(reinterpret_cast<const char*>(buffer) + offset,
                     static_cast<std::size_t>(size));
    }
    void JFlush() override { count(); }
    void JClose() override { count(); }
    int64_t JTell() override { return -1; }
    void JSeek(int64_t) override {}

private:
    void count() {
        if (calls++ == allowed) {
            hasFailed = true;
            throw JIOException("FailingMedium failed.");
        }
    }
};

constexpr const char* failed = "KELIOException FailingMedium failed.";

template <class Stream> struct Output {
    std::string run(const MediaOperation& operation, KEL* value) {
        return endingOf([&] {
            operation.write(*stream, value);
            return std::string();
        });
    }

    JPointer<FailingMedium> medium{new FailingMedium()};
    JPointer<Stream> stream{new Stream(JPointer<JOutputStream>::share(medium.get()))};
};

/// The value that is written.
class Media : public ::testing::Test {
protected:
    const JPointer<KEL_Impl> value_{KEL_Impl::of(makeMediaValue())};
};

template <class Stream> std::string bytesOf(const MediaOperation& operation, KEL* value) {
    Output<Stream> output;
    EXPECT_EQ(output.run(operation, value), "returns ") << operation.operation;
    EXPECT_EQ(endingOf([&] {
                  output.stream->JFlush();
                  return std::string();
              }),
              "returns ");
    return output.medium->bytes;
}

/// Makes each call of the medium fail. \return the number of failures
template <class Stream> int failEachWrite(const MediaOperation& operation, KEL* value) {
    const std::string whole = bytesOf<Stream>(operation, value);
    for (int allowed = 0;; ++allowed) {
        Output<Stream> output;
        output.medium->allowed = allowed;
        const std::string ending = output.run(operation, value);
        const std::string flushed = endingOf([&] {
            output.stream->JFlush();
            return std::string();
        });
        if (!output.medium->hasFailed) {
            EXPECT_EQ(output.medium->bytes, whole);
            return allowed;
        }
        EXPECT_TRUE(ending == failed || flushed == failed) << ending << ", " << flushed;
        EXPECT_TRUE(ending == failed || ending == "returns ") << ending;
        EXPECT_EQ(output.medium->bytes, whole.substr(0, output.medium->bytes.size()));
        // What was written before a failed flush is written: the next write is another one.
        if (ending == failed && std::string_view(operation.operation) != "void JClose()") {
            output.medium->bytes.clear();
            EXPECT_EQ(output.run(operation, value), "returns ");
            output.stream->JFlush();
            EXPECT_EQ(output.medium->bytes, whole) << "an operation after a failed one";
        }
    }
}

TEST_F(Media, EachFailedWriteIsReportedAndTheNextOperationIsWhole) {
    int failures = 0;
    for (const MediaOperation& operation : outputOperations()) {
        SCOPED_TRACE(operation.operation);
        const std::string before = textOf(value_.get());
        failures += failEachWrite<KELTextOutputStream_Impl>(operation, value_.get());
        failures += failEachWrite<KELBinaryOutputStream_Impl>(operation, value_.get());
        EXPECT_EQ(textOf(value_.get()), before);
    }
    EXPECT_GE(failures, 2 * static_cast<int>(outputOperations().size()));
}

/// Makes the medium fail at each byte. \return the number of failures
template <class Stream>
int failEachRead(const MediaOperation& operation, const std::string& bytes, bool isSeekable) {
    const auto run = [&](int64_t failsAt) {
        auto* medium = new PieceStream(bytes);
        medium->failsAt = failsAt;
        medium->largestPiece = 1;
        medium->seekable = isSeekable;
        Input<Stream> input(medium);
        return endingOf([&] { return operation.read(*input.operator->()); });
    };
    const std::string usual = run(INT64_MAX);
    EXPECT_FALSE(isOutOfMemory(usual)) << usual;
    int failures = 0;
    for (int64_t at = 0; at <= std::ssize(bytes); ++at) {
        const std::string ending = run(at);
        const bool isReported = ending == "KELIOException PieceStream failed.";
        EXPECT_TRUE(isReported || ending == usual) << "at byte " << at << ": " << ending;
        failures += isReported ? 1 : 0;
    }
    return failures;
}

TEST_F(Media, EachFailedReadIsReportedOrNotNeeded) {
    for (const MediaOperation& operation : inputOperations()) {
        SCOPED_TRACE(operation.operation);
        const std::string record = recordFor(operation, value_.get());
        for (const bool isSeekable : {true, false}) {
            const int inText =
                failEachRead<KELStringInputStream_Impl>(operation, textFor(operation), isSeekable);
            const int inBinary =
                failEachRead<KELBinaryInputStream_Impl>(operation, record, isSeekable);
            // Text does not implement the wide numbers, and closing reads nothing.
            const std::string_view name(operation.operation);
            const bool isWide = name.find("64") != name.npos || name.find("128") != name.npos;
            const bool isClose = name == "void JClose()";
            EXPECT_EQ(inText == 0, isWide || isClose) << inText;
            EXPECT_EQ(inBinary == 0, isClose) << inBinary;
        }
    }
}

// ---- Memory ------------------------------------------------------------------------------------

/// Makes each allocation of an operation fail, and then all from each one on. The exception is
/// described when there is memory again.
/// \param make returns a call on new streams
void failEachAllocationOf(const std::function<std::function<std::string()>()>& make) {
    const std::string usual = endingOf(make());
    for (const bool forGood : {false, true}) {
        for (std::size_t allowed = 0;; ++allowed) {
            const std::function<std::string()> call = make();
            std::exception_ptr caught;
            std::string result;
            bool hasFailed = false;
            {
                const FailingAllocation failing(allowed, forGood);
                try {
                    result = call();
                } catch (...) {
                    caught = std::current_exception();
                }
                hasFailed = failing.hasFailed();
            }
            const std::string ending = endingOf([&] {
                if (caught) {
                    std::rethrow_exception(std::exchange(caught, nullptr));
                }
                return result;
            });
            // An exception whose message cannot be allocated has an empty one.
            const bool isAsEver =
                ending == usual || (ending.ends_with("Exception ") && usual.starts_with(ending));
            EXPECT_TRUE(isAsEver || isOutOfMemory(ending))
                << "allocation " << allowed + 1 << ": " << ending << " instead of " << usual;
            if (!hasFailed) {
                break;
            }
        }
    }
}

template <class Stream>
void failAllocationsOfRead(const MediaOperation& operation, const std::string& bytes) {
    failEachAllocationOf([&] {
        const auto input = std::make_shared<Input<Stream>>(bytes);
        return [&operation, input] { return operation.read(*input->operator->()); };
    });
}

template <class Stream> void failAllocationsOfWrite(const MediaOperation& operation, KEL* value) {
    failEachAllocationOf([&operation, value] {
        const auto output = std::make_shared<Output<Stream>>();
        output->medium->bytes.reserve(1000);
        return [&operation, value, output] {
            operation.write(*output->stream, value);
            return std::string();
        };
    });
}

TEST_F(Media, EachFailedAllocationIsReportedOrNotNeeded) {
    for (const MediaOperation& operation : inputOperations()) {
        SCOPED_TRACE(operation.operation);
        failAllocationsOfRead<KELStringInputStream_Impl>(operation, textFor(operation));
        failAllocationsOfRead<KELBinaryInputStream_Impl>(operation,
                                                         recordFor(operation, value_.get()));
    }
    for (const MediaOperation& operation : outputOperations()) {
        SCOPED_TRACE(operation.operation);
        failAllocationsOfWrite<KELTextOutputStream_Impl>(operation, value_.get());
        failAllocationsOfWrite<KELBinaryOutputStream_Impl>(operation, value_.get());
    }
}

} // namespace
