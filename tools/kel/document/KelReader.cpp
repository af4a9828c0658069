#include "document/KelReader.h"

#include "document/KelWriter.h"
#include "explain/BinaryExplainer.h"
#include "explain/Refusal.h"
#include "explain/TextScanner.h"
#include "failures/Failure.h"
#include "failures/LibraryFailure.h"
#include "system/System.h"
#include "words/GuidText.h"

#include <limits>
#include <new>
#include <utility>

namespace kel::tool {

namespace {

/// A root value that is appended to the content of every input. A stream reports "end of input"
/// both after the last value and in the middle of one. If the mark was read last, the input is
/// whole. The mark is recognised by its identity, which is drawn afresh.
class EndMark {
public:
    EndMark() : value_(made(CreateKELString("end of input"))) {}

    std::string writtenAs(Format format) const {
        constexpr size_t largestMark = 256;
        MemoryToWrite file(largestMark);
        ValueWriter writer(format, file.file());
        writer.write(value_.get());
        writer.close();
        std::string written = file.take().value();
        if (format == Format::binary) {
            return written;
        }
        // The blank keeps a carriage return at the end of the content from becoming half a line
        // end. The mark's identity keeps the mark from becoming the value of an identity at that
        // end.
        return " \n" + textOfGuid(identityOf(*value_)) + " = " + written;
    }

    bool isReadAs(const Value& value) const {
        // not reached: only an open definition keeps the mark from being read
        return value != nullptr && identityOf(*value) == identityOf(*value_);
    }

private:
    Value value_;
};

/// The way in which the reading of a stream ended.
struct Ending {
    bool isEndOfInput = false;
    std::string message; ///< the message of the library's exception
    int64_t offset = 0;  ///< of the first byte not consumed
};

/// An input stream of the library over bytes in memory.
class ValueReader {
public:
    /// \param rest what follows the content
    ValueReader(std::string_view content, Format format, std::string_view rest = {})
        : memory_(content, rest) {
        if (format == Format::text) {
            stream_ = CreateKELTextInputStream(memory_.file());
        } else {
            stream_ = CreateKELBinaryInputStream(memory_.file());
        }
        if (stream_ == nullptr) {
            throw std::bad_alloc();
        }
    }
    ValueReader(const ValueReader&) = delete;
    ValueReader& operator=(const ValueReader&) = delete;
    ~ValueReader() {
        try {
            DeleteKELInputStream(stream_);
        } catch (...) {
            // A failure to leave the file at the right place matters only to offset.
        }
    }

    KEL* read() { return stream_->read(); }

    /// Ends the stream, which leaves the file just after the last byte that it consumed.
    int64_t offset() {
        DeleteKELInputStream(std::exchange(stream_, nullptr));
        return offsetIn(memory_.file());
    }

private:
    MemoryToRead memory_;
    KELInputStream* stream_ = nullptr;
};

/// Reads root values until the library throws, which happens at the end at the latest.
/// \param rest what follows the content
/// \throws std::bad_alloc if memory ran out, which is not a fault of the content
/// \throws JException if a value gets no identity, which is not one either
Ending readUntilFailure(std::string_view content, std::string_view rest, Format format,
                        std::vector<Value>& roots) {
    ValueReader reader(content, format, rest);
    Ending ending;
    try {
        for (;;) {
            roots.emplace_back(reader.read());
        }
    } catch (KELException* failure) {
        ending.isEndOfInput = dynamic_cast<KELEOFException*>(failure) != nullptr;
        ending.message = takeMessage(failure);
    } catch (const JEOFException&) {
        ending.isEndOfInput = true;
    } catch (const JIOException& failure) {
        ending.message = messageOf(failure);
    } catch (const TokenizerException& failure) {
        ending.message = messageOf(failure);
    }
    ending.offset = reader.offset();
    return ending;
}

/// Refuses records whose lengths are wrong. For a length that no memory holds, the library reports
/// only a lack of memory.
/// \throws Failure malformed
void refuseWrongLengths(std::string_view content, const std::string& inputName) {
    constexpr size_t nowhere = std::numeric_limits<size_t>::max();
    const std::string noOtherReason;
    if (!explainBinary(content, nowhere, noOtherReason).reason.empty()) {
        throw failureOf({Format::binary, content, inputName, 0, nowhere, noOtherReason, {}});
    }
}

/// Returns the library's message without its lead and its line, which the tool finds itself.
std::string withoutLine(const std::string& message) {
    constexpr std::string_view lead = "Error reading KEL - ";
    const size_t at = message.rfind(" at line:");
    // not reached: such a message of the library has its line
    return message.starts_with(lead) && at != std::string::npos
               ? message.substr(lead.size(), at - lead.size())
               : message;
}

} // namespace

Document readKel(std::string_view content, Format format, const std::string& inputName,
                 std::optional<Format> named) {
    const EndMark mark;
    const std::string end = mark.writtenAs(format);
    try {
        std::vector<Value> roots;
        const Ending ending = readUntilFailure(content, end, format, roots);
        const bool isWhole = ending.isEndOfInput && !roots.empty() && mark.isReadAs(roots.back());
        if (isWhole) {
            roots.pop_back();
        }
        // The document must own the values in every case: only the document can release cycles.
        Document document(std::move(roots), format == Format::binary);
        if (isWhole && !document.roots().empty()) {
            return document;
        }
    } catch (const std::bad_alloc&) {
        if (format == Format::binary) {
            refuseWrongLengths(content, inputName);
        }
        throw;
    }
    // Read again without the mark, which may have changed the library's message.
    std::vector<Value> roots;
    const Ending ending = readUntilFailure(content, {}, format, roots);
    const Document released(std::move(roots), format == Format::binary);
    throw failureOf({format, content, inputName, 0, static_cast<size_t>(ending.offset),
                     ending.isEndOfInput ? "unexpected end of input" : withoutLine(ending.message),
                     named});
}

std::vector<Value> rootsOfText(std::string_view text, size_t count) {
    std::vector<Value> roots;
    roots.reserve(count);
    ValueReader reader(text, Format::text);
    try {
        while (roots.size() < count) {
            roots.emplace_back(reader.read());
        }
    } catch (KELException* failure) {
        takeMessage(failure); // the caller has no use for it
        return roots;
    } catch (const JEOFException&) {
        return roots;
    } catch (const JIOException&) {
        return roots;
    } catch (const TokenizerException&) {
        return roots;
    }
    TextScanner rest(text, static_cast<size_t>(reader.offset()), text.size());
    rest.skipLayout();
    // not reached: only a file that changes meanwhile has such a rest
    if (!rest.isAtEnd()) {
        roots.clear();
    }
    return roots;
}

Value valueOfRecord(std::string_view record) {
    ValueReader reader(record, Format::binary);
    try {
        return Value(reader.read());
    } catch (KELException* failure) {
        takeMessage(failure);
    } catch (const JEOFException&) {
    } catch (const JIOException&) {
    }
    return nullptr; // the caller has no use for the message
}

} // namespace kel::tool
