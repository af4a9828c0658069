#include "KelWriter.h"

#include "Failure.h"
#include "system/System.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace kel::tool {

namespace {

/// Runs the action and turns exceptions of the library into a Failure. The system's own reason, if
/// there is one, helps a user more than the name of the library's operation.
template <class Action> void translated(const Action& action) {
    errno = 0;
    try {
        action();
    } catch (KELException* failure) {
        const int reason = errno;
        const std::string message = failure->getMessage();
        DeleteKELException(failure);
        throw Failure{Trouble::unwritten, reason != 0 ? std::strerror(reason) : message};
    } catch (const JException& failure) {
        const int reason = errno;
        const JPointer<JString> message(failure.getMessage());
        throw Failure{Trouble::unwritten, reason != 0        ? std::strerror(reason)
                                          : message.isNull() ? "out of memory"
                                                             : message->chars()};
    }
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
        DeleteKELOutputStream(stream_);
    } catch (KELException* failure) {
        DeleteKELException(failure);
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
    ValueWriter writer(Format::binary, memory.file());
    writer.write(&value);
    writer.close();
    std::optional<std::string> record = memory.take();
    if (!record) {
        throw Failure{Trouble::unwritten, "the record is too large"};
    }
    return std::move(*record);
}

void writeKel(const Document& document, Format format, std::FILE* file) {
    ValueWriter writer(format, file);
    for (const Value& root : document.roots()) {
        writer.write(root.get());
    }
    writer.close();
}

} // namespace kel::tool
