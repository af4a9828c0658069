/// \file
/// Writing values as text or binary to files, stdio handles and strings.
#pragma once

#include <kel/KEL.h>
#include <stdio.h>

/// Writes values, and single numbers between them.
///
/// \par Failures
/// If the medium fails: KELIOException with the medium's message.
///
/// \par Ownership
/// The argument is only read. The stream adds no reference.
class KELInterface_OutputStream_V1 {
public:
    /// Writes a whole value. Text: a null value writes nothing. Bytes written before a failure
    /// remain in the stream.
    /// \throws KELIOException "General KEL exception." for a kind without this form
    /// \throws KELIOException "Cannot write a value that contains itself." (text)
    /// \throws KELNullPointerException "General KEL exception." for null (binary)
    /// \throws KELIOException "Cannot write a text that repeats so much." (text)
    /// \throws KELIOException "Cannot write a string of more than 2147483647 bytes." (binary);
    ///         nothing of the value is written then
    /// \throws KELIOException "The stream is in use." if the medium calls it during an operation
    /// \throws KELOutOfMemoryException "Out of memory!"; a string stream that cannot allocate its
    ///         text throws a KELIOException, as for any failing medium, and the next write tries
    ///         again
    /// \throws KELIOException with the medium's message if the medium fails
    virtual void write(KEL* value) = 0;
    /// Writes a decimal number (text) or one byte (binary).
    virtual void JWrite8(int8_t value) = 0;
    /// Writes a decimal number (text) or two bytes, little-endian (binary).
    virtual void JWrite16(int16_t value) = 0;
    /// Writes a decimal number (text) or four bytes, little-endian (binary).
    virtual void JWrite32(int32_t value) = 0;
    /// Writes the high and the low word, each in decimal with at least eight digits (text), or
    /// eight bytes, little-endian (binary).
    virtual void JWrite64(uint64_t value) = 0;
    /// Writes the text of JHashCode::toDecimalText (text) or sixteen bytes, little-endian (binary).
    virtual void JWrite128(const JHashCode& value) = 0;
    /// Writes the characters (text), or the characters and a NUL (binary). Null writes nothing.
    virtual void JWriteString(const char* text) = 0;
    /// Writes a number with six decimals (text) or the eight bytes of the double, little-endian
    /// (binary).
    virtual void JWriteDouble(double value) = 0;
    KEL_SLOTS(
        /// Writes one raw byte, the low eight bits of byte.
        virtual void JWrite(int32_t byte) = 0;,
        /// Writes count raw bytes from buffer + offset.
        virtual void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) = 0;)
    /// Passes all buffered bytes to the operating system.
    virtual void JFlush() = 0;
    /// Flushes, then closes a file that the stream opened. A host's FILE remains open.
    virtual void JClose() = 0;

protected:
    ~KELInterface_OutputStream_V1() = default;
};

/// A stream to which values are written. DeleteKELOutputStream closes and releases it.
class KELOutputStream : public virtual KELInterface_OutputStream_V1 {
protected:
    ~KELOutputStream() = default;
};

/// The operations that a text output stream adds.
class KELTextOutputStreamInterface_V1 {
public:
    /// Turns on or off the comment after each memory block that shows its bytes up to the first
    /// NUL. It is initially off. Never fails.
    virtual void setMemBlockComment(bool flag) = 0;

protected:
    ~KELTextOutputStreamInterface_V1() = default;
};

/// Writes text to a file.
class KELTextOutputStream : public virtual KELOutputStream,
                            public virtual KELTextOutputStreamInterface_V1 {
protected:
    ~KELTextOutputStream() = default;
};

/// The operations that a string output stream adds.
class KELStringOutputStreamInterface_V1 {
public:
    /// Returns the text written so far, null-terminated and owned by the stream. Returns null
    /// before the first write. The text is valid until getString is called after a further write,
    /// or until the stream is deleted.
    /// \throws JOutOfMemoryException "StringWriter out of memory.", by value
    virtual const char* getString() = 0;
    /// Returns the number of characters written, plus one for the NUL. Never fails.
    virtual uint32_t getStringSize() const = 0;

protected:
    ~KELStringOutputStreamInterface_V1() = default;
};

/// Writes text to a string in memory.
class KELStringOutputStream : public virtual KELOutputStream,
                              public virtual KELStringOutputStreamInterface_V1 {
protected:
    ~KELStringOutputStream() = default;
};

/// Writes binary to a file. A value that this stream has already written is written as a reference.
class KELBinaryOutputStream : public virtual KELOutputStream {
protected:
    ~KELBinaryOutputStream() = default;
};

/// Returns a new stream that writes text to a host's open FILE (binary mode). The stream flushes
/// the FILE but never closes it. The stream is owned by the caller. Returns null when out of
/// memory.
/// \throws JIOException by value, "FileOutputStream. Cannot open file.", for a null handle
KEL_API KELTextOutputStream* KEL_CALL CreateKELTextOutputStream(FILE* file);

/// Returns a new stream that writes text to a file, either appending or replacing the file's
/// contents. The name is bytes on Linux and UTF-8 on Windows. The stream is owned by the caller.
/// Returns null when out of memory.
/// \throws JIOException by value, "FileOutputStream. Cannot open file."
KEL_API KELTextOutputStream* KEL_CALL CreateKELTextOutputStream(const char* fileName, bool append);

/// Returns a new stream that writes text to a string that it owns. The stream is owned by the
/// caller. Returns null when out of memory.
KEL_API KELStringOutputStream* KEL_CALL CreateKELStringOutputStream();

/// Returns a new stream that writes binary to a host's open FILE (binary mode). The stream flushes
/// the FILE but never closes it. The stream is owned by the caller. Returns null when out of
/// memory.
/// \throws JIOException by value, "FileOutputStream. Cannot open file.", for a null handle
KEL_API KELBinaryOutputStream* KEL_CALL CreateKELBinaryOutputStream(FILE* file);

/// Returns a new stream that writes binary to a file and replaces its contents. The stream is owned
/// by the caller. Returns null when out of memory.
/// \throws JIOException by value, "FileOutputStream. Cannot open file."
KEL_API KELBinaryOutputStream* KEL_CALL CreateKELBinaryOutputStream(const char* fileName);

/// Closes and releases the stream, and gives up the caller's reference. Null is ignored. The stream
/// is released even if it throws because the last bytes cannot be written.
/// \throws KELIOException "FileOutputStream::JClose() error."
KEL_API void KEL_CALL DeleteKELOutputStream(KELOutputStream* stream);
