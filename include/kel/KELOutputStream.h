/// \file
/// Writing values as text or binary to files, stdio handles and strings.
#pragma once

#include <kel/KEL.h>
#include <stdio.h>

/// Writing of values, and of single numbers between them. A failure of the medium is thrown as a
/// KELIOException with the medium's message.
class KELInterface_OutputStream_V1 {
public:
    /// Writes a whole value. Text: a null value writes nothing. What was written before a failure
    /// stays in the stream.
    /// \throws KELIOException "General KEL exception." for a kind without this form
    /// \throws KELIOException "Cannot write a value that contains itself." (text)
    /// \throws KELNullPointerException "General KEL exception." for null (binary)
    virtual void write(KEL* value) = 0;
    /// Text: decimal. Binary: one byte.
    virtual void JWrite8(int8_t value) = 0;
    /// Text: decimal. Binary: two bytes, little-endian.
    virtual void JWrite16(int16_t value) = 0;
    /// Text: decimal. Binary: four bytes, little-endian.
    virtual void JWrite32(int32_t value) = 0;
    /// Text: the high and the low word, each in decimal with at least eight digits. Binary: eight
    /// bytes, little-endian.
    virtual void JWrite64(uint64_t value) = 0;
    /// Text: JHashCode::toDecimalText. Binary: sixteen bytes, little-endian.
    virtual void JWrite128(const JHashCode& value) = 0;
    /// Text: the characters. Binary: the characters and a NUL. Null writes nothing.
    virtual void JWriteString(const char* text) = 0;
    /// Text: six decimals. Binary: the eight bytes of the double, little-endian.
    virtual void JWriteDouble(double value) = 0;
    KEL_SLOTS(
        /// Writes one raw byte, the low eight bits of byte.
        virtual void JWrite(int32_t byte) = 0;,
        /// Writes count raw bytes from buffer + offset.
        virtual void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) = 0;)
    /// Hands everything to the medium's system.
    virtual void JFlush() = 0;
    /// Flushes, and closes a file that the stream opened; a host's FILE stays open.
    virtual void JClose() = 0;

protected:
    ~KELInterface_OutputStream_V1() = default;
};

/// A stream that values are written to. DeleteKELOutputStream ends it.
class KELOutputStream : public virtual KELInterface_OutputStream_V1 {
protected:
    ~KELOutputStream() = default;
};

/// What a text output stream offers beside writing.
class KELTextOutputStreamInterface_V1 {
public:
    /// Switches the comment after memory blocks that shows their bytes up to the first NUL. Off at
    /// first.
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

/// What a string output stream offers beside writing.
class KELStringOutputStreamInterface_V1 {
public:
    /// The text written so far, NUL-terminated, owned by the stream; null before the first write.
    /// Valid until getString is called after a further write, or the stream is deleted.
    virtual const char* getString() = 0;
    /// The number of characters written, plus one for the NUL.
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

/// Writes binary to a file. A value that was written to this stream before is written as a
/// reference to it.
class KELBinaryOutputStream : public virtual KELOutputStream {
protected:
    ~KELBinaryOutputStream() = default;
};

/// Text to a host's open FILE (binary mode), which is flushed but never closed. Null when out of
/// memory.
/// \throws JIOException by value, "FileOutputStream. Cannot open file.", for a null handle
KEL_API KELTextOutputStream* KEL_CALL CreateKELTextOutputStream(FILE* file);

/// Text to a file (name: bytes on Linux, UTF-8 on Windows), appended or replacing what it held.
/// \throws JIOException by value, "FileOutputStream. Cannot open file."
KEL_API KELTextOutputStream* KEL_CALL CreateKELTextOutputStream(const char* fileName, bool append);

/// Text to a string that the stream holds.
KEL_API KELStringOutputStream* KEL_CALL CreateKELStringOutputStream();

/// Binary to a host's open FILE (binary mode), which is flushed but never closed.
/// \throws JIOException by value, "FileOutputStream. Cannot open file.", for a null handle
KEL_API KELBinaryOutputStream* KEL_CALL CreateKELBinaryOutputStream(FILE* file);

/// Binary to a file, replacing what it held.
/// \throws JIOException by value, "FileOutputStream. Cannot open file."
KEL_API KELBinaryOutputStream* KEL_CALL CreateKELBinaryOutputStream(const char* fileName);

/// Closes and releases the stream. Null is ignored. The stream is gone in every case, also when
/// the last bytes could not be written:
/// \throws KELIOException "FileOutputStream::JClose() error."
KEL_API void KEL_CALL DeleteKELOutputStream(KELOutputStream* stream);
