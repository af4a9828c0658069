/// \file
/// Writes values to text and binary and reads them back, in memory.
#pragma once

#include "serial/binary/KELBinaryInputStream_Impl.h"
#include "serial/binary/KELBinaryOutputStream_Impl.h"
#include "serial/text/KELStringInputStream_Impl.h"
#include "serial/text/KELTextOutputStream_Impl.h"
#include "streams/StringReader.h"
#include "streams/StringWriter.h"
#include "support/Held.h"
#include "support/Thrown.h"

#include <string>
#include <string_view>

namespace kel::test {

/// An output stream over a string.
template <class Stream> class Output {
public:
    Output()
        : writer_(new StringWriter()),
          stream_(new Stream(JPointer<JOutputStream>::share(writer_.get()))) {}

    /// Writes a value. The value can be raw, held, or null.
    Output& write(KEL* value) {
        stream_->write(value);
        return *this;
    }
    template <class T> Output& write(const Held<T>& value) { return write(value.get()); }

    Stream* operator->() const { return stream_.get(); }

    /// Returns everything written so far.
    std::string bytes() const {
        const char* text = writer_->getString();
        return text == nullptr ? std::string() : std::string(text, writer_->getStringSize() - 1);
    }

private:
    JPointer<StringWriter> writer_;
    JPointer<Stream> stream_;
};

using TextOutput = Output<KELTextOutputStream_Impl>;
using BinaryOutput = Output<KELBinaryOutputStream_Impl>;

/// An input stream over a string, or over a medium that the test provides.
template <class Stream> class Input {
public:
    explicit Input(std::string_view text)
        : Input(new StringReader(text.data(), static_cast<int64_t>(text.size()))) {}
    explicit Input(JInputStream* medium) : Input(JPointer<JInputStream>(medium)) {}

    /// Returns the next root value.
    Held<KEL_Impl> read() { return Held<KEL_Impl>(KEL_Impl::of(stream_->read())); }

    Stream* operator->() const { return stream_.get(); }

private:
    explicit Input(const JPointer<JInputStream>& medium) : stream_(new Stream(medium)) {}

    JPointer<Stream> stream_;
};

using TextInput = Input<KELStringInputStream_Impl>;
using BinaryInput = Input<KELBinaryInputStream_Impl>;

/// Returns the text of one value.
inline std::string textOf(KEL* value) {
    return TextOutput().write(value).bytes();
}
template <class T> std::string textOf(const Held<T>& value) {
    return textOf(value.get());
}

/// Returns the record of one value.
inline std::string binaryOf(KEL* value) {
    return BinaryOutput().write(value).bytes();
}
template <class T> std::string binaryOf(const Held<T>& value) {
    return binaryOf(value.get());
}

/// Returns the first value of a text or of binary records.
inline Held<KEL_Impl> read(std::string_view text) {
    return TextInput(text).read();
}
inline Held<KEL_Impl> readBinary(std::string_view bytes) {
    return BinaryInput(bytes).read();
}

/// Reads a text and returns the text that is written for its first value.
inline std::string rewritten(std::string_view text) {
    return textOf(read(text));
}

/// Returns the message of the KELIOException that reading the first value of a text throws.
inline std::string refusalOf(std::string_view text) {
    return thrownMessage<KELIOException>([&] { read(text); });
}
/// Returns the same for a KELEOFException.
inline std::string endingOf(std::string_view text) {
    return thrownMessage<KELEOFException>([&] { read(text); });
}

/// Returns the two messages of the text reader.
inline std::string syntaxErrorAt(int line) {
    return "Error reading KEL - syntax error at line: " + std::to_string(line);
}
inline std::string endAt(int line) {
    return "Error reading KEL - unexpected end of input at line: " + std::to_string(line);
}

} // namespace kel::test
