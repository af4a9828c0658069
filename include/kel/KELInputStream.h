/// \file
/// Reading values from text or binary in files, stdio handles and strings.
#pragma once

#include <kel/KEL.h>
#include <stdio.h>

class JString;

/// Reading of values, and of single numbers between them.
class KELInterface_InputStream_V1 {
public:
    /// Reads the next whole value; the caller owns it. Text: null for the word null.
    /// \throws KELEOFException (text) when input ends before or inside the value: "Error reading
    ///         KEL - unexpected end of input at line: N"
    /// \throws KELIOException (text) "Error reading KEL - syntax error at line:" and the line
    /// \throws TokenizerException by value (text) "Reached end of file with no closing quote."
    /// \throws KELIOException (binary) "Error reading KEL header.", "Error in KEL hash code."
    /// \throws KELOutOfMemoryException (binary) "Out of memory!"
    /// \throws JEOFException by value (binary) when input ends before or inside a record
    /// \throws KELIOException with the medium's message when the medium fails
    virtual KEL* read() = 0;
    /// Text: one number. Binary: one byte.
    virtual int8_t JRead8() = 0;
    /// Text: one number. Binary: two bytes, little-endian.
    virtual int16_t JRead16() = 0;
    /// Text: one number. Binary: four bytes, little-endian.
    virtual int32_t JRead32() = 0;
    /// Binary: eight bytes, little-endian, into out. Returns out.
    /// \throws KELException "Not implemented." (text)
    virtual uint64_t& JRead64(uint64_t& out) = 0;
    /// Binary: sixteen bytes, little-endian, into out. Returns out.
    /// \throws KELException "Not implemented." (text)
    virtual JHashCode& JRead128(JHashCode& out) = 0;
    /// Text: one word, bare or quoted. Binary: the characters up to a NUL. The caller owns the
    /// string and releases it.
    virtual JString* JReadString() = 0;
    /// Text: one number. Binary: eight bytes, little-endian.
    virtual double JReadDouble() = 0;
    KEL_SLOTS(
        /// Reads one raw byte; -1 at end of input.
        virtual int32_t JRead() = 0;,
        /// Reads at most count raw bytes to buffer + offset. \return how many, 0 at end of input
        virtual int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) = 0;)
    /// Closes a file that the stream opened; a host's FILE stays open and, if it can seek, is left
    /// behind the last byte that was used.
    virtual void JClose() = 0;

protected:
    ~KELInterface_InputStream_V1() = default;
};

/// A stream that values are read from, one root value after the other. DeleteKELInputStream ends
/// it.
class KELInputStream : public virtual KELInterface_InputStream_V1 {
protected:
    ~KELInputStream() = default;
};

/// Reads text from a file.
class KELTextInputStream : public virtual KELInputStream {
protected:
    ~KELTextInputStream() = default;
};

/// What a string input stream offers beside reading: nothing in this version.
class KELStringInputStreamInterface_V1 {
protected:
    ~KELStringInputStreamInterface_V1() = default;
};

/// Reads text from a string in memory.
class KELStringInputStream : public virtual KELInputStream,
                             public virtual KELStringInputStreamInterface_V1 {
protected:
    ~KELStringInputStream() = default;
};

/// Reads binary from a file. A reference yields the very value that was read before.
class KELBinaryInputStream : public virtual KELInputStream {
protected:
    ~KELBinaryInputStream() = default;
};

/// Text from a host's open FILE (binary mode), which is never closed. Null when out of memory.
/// \throws JIOException by value, "FileInputStream. Cannot open file.", for a null handle
KEL_API KELTextInputStream* KEL_CALL CreateKELTextInputStream(FILE* file);

/// Text from a file (name: bytes on Linux, UTF-8 on Windows).
/// \throws JIOException by value, "FileInputStream. Cannot open file."
KEL_API KELTextInputStream* KEL_CALL CreateKELTextInputStream(const char* fileName);

/// Text from length bytes at text, which are copied. Null text or a negative length is empty.
KEL_API KELStringInputStream* KEL_CALL CreateKELStringInputStream(const char* text, int32_t length);

/// Binary from a host's open FILE (binary mode), which is never closed.
/// \throws JIOException by value, "FileInputStream. Cannot open file.", for a null handle
KEL_API KELBinaryInputStream* KEL_CALL CreateKELBinaryInputStream(FILE* file);

/// Binary from a file.
/// \throws JIOException by value, "FileInputStream. Cannot open file."
KEL_API KELBinaryInputStream* KEL_CALL CreateKELBinaryInputStream(const char* fileName);

/// Closes and releases the stream; values that were read live on. Null is ignored.
KEL_API void KEL_CALL DeleteKELInputStream(KELInputStream* stream);
