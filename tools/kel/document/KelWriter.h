/// \file
/// Writes values as text and binary.
#pragma once

#include "document/Document.h"
#include "document/Format.h"
#include "document/Values.h"

#include <cstdio>
#include <string>

namespace kel::tool {

/// The library's text or binary writer over an open file, which it flushes but does not close.
/// Every error becomes a Failure of the kind unwritten whose message is the reason alone.
class ValueWriter {
public:
    /// \param format text or binary
    ValueWriter(Format format, std::FILE* file);
    /// Writes to a stream of the caller, which this object deletes.
    explicit ValueWriter(KELOutputStream* stream) : stream_(stream) {}
    ValueWriter(const ValueWriter&) = delete;
    ValueWriter& operator=(const ValueWriter&) = delete;
    /// Ends the stream. A writer that was not closed has failed already, so a failure to flush is
    /// not reported again.
    ~ValueWriter();

    /// Writes one root value. Null is written as the word NULL in text; binary has no form for it.
    void write(KEL* value);

    /// Hands the last bytes to the system.
    void close();

private:
    KELOutputStream* stream_;
};

/// Returns the text form of a value that contains itself nowhere, also if it cannot be read back.
/// \throws Failure refused if the text is too long for the library
std::string textOf(KEL& value);

/// Returns the binary record of a value that contains itself nowhere.
/// \param limit a number of bytes that the record does not exceed
/// \throws NotInParts if the value has no record of this size
std::string recordOf(KEL& value, size_t limit);

/// Returns the binary records of all root values of the document.
/// \throws Failure unwritten
std::string recordsOf(const Document& document);

/// Returns the text form of all root values of the document.
/// \throws Failure refused if the library refuses its length
std::string textOf(const Document& document);

/// Writes all root values of the document as text or binary.
/// \throws Failure unwritten
void writeKel(const Document& document, Format format, std::FILE* file);

} // namespace kel::tool
