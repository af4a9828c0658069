/// \file
/// StringWriter: an output stream to a growing text in memory.
#pragma once

#include "streams/JOutputStream.h"

#include <cstddef>

/// Collects the bytes written and provides them as a null-terminated text. A write that throws has
/// written nothing. After a write without memory, the next one tries again.
class StringWriter : public JOutputStream {
public:
    StringWriter() = default;
    StringWriter(const StringWriter&) = delete;
    StringWriter& operator=(const StringWriter&) = delete;
    ~StringWriter() override;

    /// Returns the text written so far and a NUL; null before the first write. The text belongs to
    /// the writer and is valid until getString is called after a further write.
    /// \throws JOutOfMemoryException "StringWriter out of memory."
    virtual const char* getString();

    /// Returns the number of characters written, plus one for the NUL.
    virtual uint32_t getStringSize() const { return count_ + 1; }

    /// Writes the low eight bits of byte.
    /// \throws JIOException "StringWriter::JWrite(int). Stream returned bad() flag.", when there is
    ///         no memory
    /// \throws JIOException "StringWriter::JWrite(int). Stream returned fail() flag.", when the
    ///         number of characters would exceed 32 bits, after a failed JSeek, and from then on
    void JWrite(int32_t byte) override;

    /// Writes count bytes from buffer + offset. A count below 1 adds nothing, but it is a write:
    /// getString then no longer returns null.
    /// \throws JIOException "StringWriter::JWrite(uchar*,int,int). Buffer=NULL"
    /// \throws JIOException "StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.", as
    ///         for one byte
    /// \throws JIOException "StringWriter::JWrite(uchar*,int,int). Stream returned fail() flag.",
    ///         as for one byte
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override;

    /// Does nothing, because no bytes are held back.
    void JFlush() override {}

    /// Does nothing: a text in memory cannot be closed and remains readable.
    void JClose() override {}

    /// Returns the position of the next character, or -1 after a failure until a write succeeds.
    int64_t JTell() override;

    /// Moves back into the text, or to its end. Characters written there replace the old ones but
    /// count as written again, so getString then ends in that many NULs.
    /// \throws JIOException "StringWriter::JSeek(). Cannot seek to negative position."
    /// \throws JIOException "StringWriter::JSeek(). Stream returned bad() flag." after a write
    ///         without memory, until a write succeeds
    /// \throws JIOException "StringWriter::JSeek(). Stream returned fail() flag." after the end
    void JSeek(int64_t position) override;

private:
    /// The states, like the flags of a standard stream that the messages name. A write can
    /// end the state bad. The state failed is final.
    enum class State { good, failed, bad };

    void write(const void* bytes, std::size_t count);
    void makeRoom(std::size_t count);
    void checkState(const char* badMessage, const char* failMessage) const;

    char* text_ = nullptr;     // size_ characters, and room for a NUL; null before the first one
    char* snapshot_ = nullptr; // what getString returned: text_ itself until a further write
    std::size_t capacity_ = 0; // without the NUL
    std::size_t size_ = 0;
    std::size_t place_ = 0; // of the next character, at most size_
    uint32_t count_ = 0;    // of the characters written, at least size_
    State state_ = State::good;
    bool changed_ = false;
};
