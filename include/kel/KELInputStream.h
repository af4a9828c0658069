/// \file
/// Reading values from text or binary in files, stdio handles and strings.
#pragma once

#include <kel/KEL.h>
#include <stdio.h>

class JString;

/// Reads values, and single numbers between them.
///
/// \par Failures
/// If the input ends too early: KELEOFException "Error reading KEL - unexpected end of input at
/// line: N" (text), JEOFException by value (binary). For something else than the number or word:
/// KELIOException "Error reading KEL - syntax error at line:" and the line (text). If the medium
/// fails: KELIOException with the medium's message.
class KELInterface_InputStream_V1 {
public:
    /// Reads the next whole value and returns it, owned by the caller. Text: returns null for the
    /// word null.
    /// \throws KELEOFException (text) if the input ends before or inside the value: "Error reading
    ///         KEL - unexpected end of input at line: N"
    /// \throws KELIOException (text) "Error reading KEL - syntax error at line:" and the line
    /// \throws TokenizerException by value (text) "Reached end of file with no closing quote."
    /// \throws KELIOException (binary) "Error reading KEL header.", "Error in KEL hash code."
    /// \throws KELRenameException (binary) "KEL_Struct key can't contain a \"" if a variable's name
    ///         does
    /// \throws KELOutOfMemoryException "Out of memory!"; in binary also if the length of a String
    ///         or MemBlock at the top level is more than a buffer can hold
    /// \throws JEOFException by value (binary) if the input ends before or inside a record
    /// \throws KELIOException with the medium's message if the medium fails
    virtual KEL* read() = 0;
    /// Reads one number (text) or one byte (binary).
    virtual int8_t JRead8() = 0;
    /// Reads one number (text) or two bytes, little-endian (binary).
    virtual int16_t JRead16() = 0;
    /// Reads one number (text) or four bytes, little-endian (binary).
    virtual int32_t JRead32() = 0;
    /// Reads eight bytes, little-endian, into out and returns out (binary).
    /// \throws KELException "Not implemented." (text)
    /// \throws JEOFException by value (binary) if the input ends before the last byte
    /// \throws KELIOException (binary) with the medium's message if the medium fails
    virtual uint64_t& JRead64(uint64_t& out) = 0;
    /// Reads sixteen bytes, little-endian, into out and returns out (binary).
    /// \throws KELException "Not implemented." (text)
    /// \throws JEOFException by value (binary) if the input ends before the last byte
    /// \throws KELIOException (binary) with the medium's message if the medium fails
    virtual JHashCode& JRead128(JHashCode& out) = 0;
    /// Reads one bare or quoted word (text) or the characters up to a NUL (binary). The caller owns
    /// the string and releases it.
    /// \throws KELEOFException (text) if the input ends before the word
    /// \throws KELIOException (text) for something else than a word; with the medium's message if
    ///         the medium fails
    /// \throws JEOFException by value (binary) if the input ends before the first character
    /// \throws KELOutOfMemoryException "Out of memory!" (text); binary throws JOutOfMemoryException
    ///         or std::bad_alloc by value
    virtual JString* JReadString() = 0;
    /// Reads one number (text) or eight bytes, little-endian (binary).
    virtual double JReadDouble() = 0;
    KEL_SLOTS(
        /// Reads one raw byte. Returns -1 at end of input.
        /// \throws KELIOException with the medium's message if the medium fails
        virtual int32_t JRead() = 0;,
        /// Reads at most count raw bytes to buffer + offset. If the medium fails after some bytes,
        /// returns those bytes; the next read throws.
        /// \return the number of bytes read, 0 at end of input
        /// \throws KELIOException for a null buffer; with the medium's message if the medium fails
        ///         before the first byte
        virtual int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) = 0;)
    /// Closes a file that the stream opened. A host's FILE remains open. If it can seek, its
    /// position is just after the last byte consumed.
    /// \throws KELIOException with the medium's message if the medium fails
    virtual void JClose() = 0;

protected:
    ~KELInterface_InputStream_V1() = default;
};

/// A stream from which values are read, one root value after the other. DeleteKELInputStream closes
/// and releases it.
class KELInputStream : public virtual KELInterface_InputStream_V1 {
protected:
    ~KELInputStream() = default;
};

/// Reads text from a file.
class KELTextInputStream : public virtual KELInputStream {
protected:
    ~KELTextInputStream() = default;
};

/// The operations that a string input stream adds: none in this version.
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

/// Reads binary from a file. A reference yields the same value object that the stream read before.
class KELBinaryInputStream : public virtual KELInputStream {
protected:
    ~KELBinaryInputStream() = default;
};

/// Returns a new stream that reads text from a host's open FILE (binary mode) and never closes it.
/// The stream is owned by the caller. Returns null when out of memory.
/// \throws JIOException by value, "FileInputStream. Cannot open file.", for a null handle
KEL_API KELTextInputStream* KEL_CALL CreateKELTextInputStream(FILE* file);

/// Returns a new stream that reads text from a file. The name is bytes on Linux and UTF-8 on
/// Windows. The stream is owned by the caller. Returns null when out of memory.
/// \throws JIOException by value, "FileInputStream. Cannot open file."
KEL_API KELTextInputStream* KEL_CALL CreateKELTextInputStream(const char* fileName);

/// Returns a new stream that reads text from length bytes at text, which it copies. Null text or a
/// negative length is empty input. The stream is owned by the caller. Returns null when out of
/// memory.
KEL_API KELStringInputStream* KEL_CALL CreateKELStringInputStream(const char* text, int32_t length);

/// Returns a new stream that reads binary from a host's open FILE (binary mode) and never closes
/// it. The stream is owned by the caller. Returns null when out of memory.
/// \throws JIOException by value, "FileInputStream. Cannot open file.", for a null handle
KEL_API KELBinaryInputStream* KEL_CALL CreateKELBinaryInputStream(FILE* file);

/// Returns a new stream that reads binary from a file. The stream is owned by the caller. Returns
/// null when out of memory.
/// \throws JIOException by value, "FileInputStream. Cannot open file."
KEL_API KELBinaryInputStream* KEL_CALL CreateKELBinaryInputStream(const char* fileName);

/// Closes and releases the stream, and gives up the caller's reference. Values that were read from
/// it remain valid. Null is ignored. The stream is released even if closing it fails.
/// \throws KELIOException "FileInputStream::JClose() error."
KEL_API void KEL_CALL DeleteKELInputStream(KELInputStream* stream);
