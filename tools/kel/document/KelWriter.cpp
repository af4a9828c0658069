#include "document/KelWriter.h"

#include "failures/Failure.h"
#include "failures/LibraryFailure.h"
#include "losses/RecordSize.h"
#include "parts/NotInParts.h"
#include "system/System.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

namespace kel::tool {

namespace {

/// The library's limit on texts, which no option raises.
constexpr std::string_view tooLongText = "Cannot write a text that repeats so much.";

/// Runs the action and turns exceptions of the library into a Failure. The system's own reason, if
/// there is one, helps a user more than the name of the library's operation.
/// \throws std::bad_alloc if memory ran out
template <class Action> void translated(const Action& action) {
    errno = 0;
    try {
        action();
    } catch (KELException* failure) {
        const int reason = errno;
        const std::string message = takeMessage(failure);
        if (message == tooLongText) {
            throw Failure{Trouble::refused,
                          "the text of a value would be too long, because of deep nesting or of "
                          "values that are shared many times; write binary or JSON"};
        }
        throw Failure{Trouble::unwritten, reason != 0 ? std::strerror(reason) : message};
    } catch (const JException& failure) {
        const int reason = errno;
        const std::string message = messageOf(failure);
        throw Failure{Trouble::unwritten, reason != 0 ? std::strerror(reason) : message};
    }
}

/// Returns the text form of what the action writes.
template <class Action> std::string textWrittenBy(const Action& action) {
    KELStringOutputStream* stream = CreateKELStringOutputStream();
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    ValueWriter writer(stream);
    action(writer);
    std::string text;
    translated([&] {
        const char* written = stream->getString();
        text.assign(written != nullptr ? written : "");
    });
    return text;
}

} // namespace

ValueWriter::ValueWriter(Format format, std::FILE* file) : stream_(nullptr) {
    translated([&] {
        if (format == Format::text) {
            stream_ = CreateKELTextOutputStream(file);
        } else {
            stream_ = CreateKELBinaryOutputStream(file);
        }
    });
    if (stream_ == nullptr) {
        throw std::bad_alloc();
    }
}

ValueWriter::~ValueWriter() {
    try {
        close();
    } catch (...) {
        // The failure that ended the writing has a better reason.
    }
}

void ValueWriter::write(KEL* value) {
    translated([&] {
        if (value == nullptr) {
            stream_->JWriteString("NULL\n");
        } else {
            stream_->write(value);
        }
    });
}

void ValueWriter::close() {
    KELOutputStream* stream = stream_;
    stream_ = nullptr;
    translated([&] { DeleteKELOutputStream(stream); });
}

std::string recordOf(KEL& value, size_t limit) {
    // Most records get room of the same size, which the allocator then keeps for the next one.
    constexpr size_t usualLimit = size_t{1} << 20U;
    MemoryToWrite memory(std::max(limit, usualLimit));
    try {
        ValueWriter writer(Format::binary, memory.file());
        writer.write(&value);
        writer.close();
    } catch (const Failure&) {
        throw NotInParts();
    }
    std::optional<std::string> record = memory.take();
    if (!record) {
        throw NotInParts();
    }
    return std::move(*record);
}

std::string textOf(KEL& value) {
    return textWrittenBy([&value](ValueWriter& writer) { writer.write(&value); });
}

std::string recordsOf(const Document& document) {
    MemoryToWrite memory(mostRecordBytes(document) + 1);
    writeKel(document, Format::binary, memory.file());
    std::optional<std::string> records = memory.take();
    // not reached: there was room for all of them
    if (!records) {
        throw std::bad_alloc();
    }
    return std::move(*records);
}

std::string textOf(const Document& document) {
    return textWrittenBy([&document](ValueWriter& writer) {
        for (const Value& root : document.roots()) {
            writer.write(root.get());
        }
    });
}

void writeKel(const Document& document, Format format, std::FILE* file) {
    ValueWriter writer(format, file);
    for (const Value& root : document.roots()) {
        writer.write(root.get());
    }
    writer.close();
}

} // namespace kel::tool
