// Every operation of streams over a host's FILE, with each call of the operating system failing.
#include "atomicity/MediaOperations.h"
#include "support/Held.h"
#include "support/ValueStreams.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

using namespace kel::test;

namespace {

/// A file in memory. Its call after the first `allowed` ones fails: a read, a write, or a search
/// for a position.
struct FailingFile {
    int allowed = INT32_MAX;
    int calls = 0;
    bool hasFailed = false;
    std::string bytes;
    std::size_t place = 0;

    bool fails() {
        if (calls++ == allowed) {
            hasFailed = true;
            errno = EIO;
            return true;
        }
        return false;
    }

    /// Opens the file without a buffer, so that every operation calls it.
    FILE* open(const char* mode) {
        cookie_io_functions_t functions{};
        functions.read = [](void* self, char* buffer, size_t size) -> ssize_t {
            auto& file = *static_cast<FailingFile*>(self);
            const std::size_t count = std::min(size, file.bytes.size() - file.place);
            if (file.fails()) {
                return -1;
            }
            std::memcpy(buffer, file.bytes.data() + file.place, count);
            file.place += count;
            return static_cast<ssize_t>(count);
        };
        functions.write = [](void* self, const char* buffer, size_t size) -> ssize_t {
            auto& file = *static_cast<FailingFile*>(self);
            if (file.fails()) {
                return 0; // how such a file reports a failure
            }
            file.bytes.append(buffer, size);
            return static_cast<ssize_t>(size);
        };
        FILE* file = fopencookie(this, mode, functions);
        std::setvbuf(file, nullptr, _IONBF, 0);
        return file;
    }
};

struct Closing {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, Closing>;

/// Runs an output operation, then flushes, and returns both endings.
template <class Create>
std::string written(FailingFile& medium, const MediaOperation& operation, KEL* value,
                    const Create& create) {
    const File file(medium.open("w"));
    KELOutputStream* stream = create(file.get());
    std::string endings = endingOf([&] {
        operation.write(*stream, value);
        return std::string();
    });
    endings += ", " + endingOf([&] {
                   stream->JFlush();
                   return std::string();
               });
    endings += ", " + endingOf([stream] {
                   DeleteKELOutputStream(stream);
                   return std::string();
               });
    return endings;
}

template <class Create>
int failEachWrite(const MediaOperation& operation, KEL* value, const Create& create) {
    FailingFile whole;
    EXPECT_EQ(written(whole, operation, value, create), "returns , returns , returns ");
    for (int allowed = 0;; ++allowed) {
        FailingFile medium;
        medium.allowed = allowed;
        const std::string endings = written(medium, operation, value, create);
        if (!medium.hasFailed) {
            EXPECT_EQ(medium.bytes, whole.bytes);
            return allowed;
        }
        EXPECT_NE(endings.find("KELIOException FileOutputStream::"), std::string::npos) << endings;
        EXPECT_EQ(medium.bytes, whole.bytes.substr(0, medium.bytes.size()));
    }
}

TEST(FailingHandle, EachFailedWriteIsReported) {
    const JPointer<KEL_Impl> value(KEL_Impl::of(makeMediaValue()));
    int failures = 0;
    for (const MediaOperation& operation : outputOperations()) {
        SCOPED_TRACE(operation.operation);
        failures += failEachWrite(operation, value.get(), [](FILE* file) -> KELOutputStream* {
            return CreateKELTextOutputStream(file);
        });
        failures += failEachWrite(operation, value.get(), [](FILE* file) -> KELOutputStream* {
            return CreateKELBinaryOutputStream(file);
        });
    }
    EXPECT_GE(failures, 20); // all but flushing and closing write something
}

template <class Create>
int failEachRead(const MediaOperation& operation, const std::string& bytes, const Create& create) {
    const auto run = [&](FailingFile& medium) {
        medium.bytes = bytes;
        const File file(medium.open("r"));
        KELInputStream* stream = create(file.get());
        std::string ending = endingOf([&] { return operation.read(*stream); });
        DeleteKELInputStream(stream);
        return ending;
    };
    FailingFile undisturbed;
    const std::string usual = run(undisturbed);
    for (int allowed = 0;; ++allowed) {
        FailingFile medium;
        medium.allowed = allowed;
        const std::string ending = run(medium);
        if (!medium.hasFailed) {
            EXPECT_EQ(ending, usual);
            return allowed;
        }
        EXPECT_TRUE(ending == usual ||
                    ending.find("KELIOException FileInputStream::") != std::string::npos)
            << ending;
    }
}

TEST(FailingHandle, EachFailedReadIsReportedOrNotNeeded) {
    const JPointer<KEL_Impl> value(KEL_Impl::of(makeMediaValue()));
    int failures = 0;
    for (const MediaOperation& operation : inputOperations()) {
        SCOPED_TRACE(operation.operation);
        failures += failEachRead(operation, textFor(operation), [](FILE* file) -> KELInputStream* {
            return CreateKELTextInputStream(file);
        });
        failures += failEachRead(
            operation, recordFor(operation, value.get()),
            [](FILE* file) -> KELInputStream* { return CreateKELBinaryInputStream(file); });
    }
    EXPECT_GE(failures, 18); // all but closing, and wide numbers in text, read something
}

} // namespace
