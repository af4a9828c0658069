/// \file
/// FileOutputStream: bytes to a file, a host's FILE or a standard stream.
#pragma once

#include "streams/JOutputStream.h"

#include <cstdio>
#include <ostream>

/// Writes a file by name, which it owns and closes, or a host's FILE (opened in binary mode) or
/// std::ostream, which must outlive it and is flushed but never closed.
///
/// stdio keeps bytes in a buffer, so a full disk is sometimes reported only at JFlush or JClose.
/// Call JClose, because the destructor cannot report. A closed stream refuses to write. Whatever
/// the buffer of a standard stream throws makes the stream bad.
class FileOutputStream : public JOutputStream {
public:
    /// Opens a file for writing, after its contents or in place of them. The name consists of bytes
    /// on Linux and is UTF-8 on Windows.
    /// \throws JIOException "FileOutputStream. Cannot open file.", also for a null name
    FileOutputStream(const char* name, bool append);

    /// Writes to the host's file from its current position.
    /// \throws JIOException "FileOutputStream. Cannot open file." for a null handle
    explicit FileOutputStream(std::FILE* file);

    /// Writes to the host's stream from its current position.
    explicit FileOutputStream(std::ostream& stream);

    FileOutputStream(const FileOutputStream&) = delete;
    FileOutputStream& operator=(const FileOutputStream&) = delete;

    /// Closes an owned file and flushes a host's. A failure is lost here, so call JClose first.
    ~FileOutputStream() override;

    /// Writes the low eight bits of byte.
    /// \throws JIOException "FileOutputStream::JWrite(int). Stream returned error:32"
    /// \throws JIOException "FileOutputStream::JWrite(int). Stream returned bad() flag."
    /// \throws JIOException "FileOutputStream::JWrite(int). Stream returned fail() flag."
    void JWrite(int32_t byte) override;

    /// Writes count bytes from buffer + offset; writes nothing for a count below 1.
    /// \throws JIOException "FileOutputStream::JWrite(uchar*,int,int). Buffer=NULL"
    /// \throws JIOException "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32"
    /// \throws JIOException "FileOutputStream::JWrite(uchar*,int,int). Stream returned bad() flag."
    /// \throws JIOException "FileOutputStream::JWrite(uchar*,int,int). Stream returned fail()
    ///         flag."
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override;

    /// Hands everything to the system; does nothing when closed.
    /// \throws JIOException "FileOutputStream::JFlush() error."
    void JFlush() override;

    /// Flushes, and closes an owned file. If a write to an owned file ever failed, closing it fails
    /// too, because bytes are missing in it.
    /// \throws JIOException "FileOutputStream::JClose() error."; the stream is closed all the same
    void JClose() override;

    /// Returns the position, or -1 when closed or without positions.
    /// \throws JIOException "FileOutputStream::JSeek(). Stream returned bad() flag." when a
    ///         standard stream's buffer throws
    int64_t JTell() override;

    /// Moves to a position. A closed stream cannot move.
    /// \throws JIOException "FileOutputStream::JSeek(). Cannot seek to negative position."
    /// \throws JIOException "FileOutputStream::JSeek(long). Stream returned error:32"
    /// \throws JIOException "FileOutputStream::JSeek(). Stream returned bad() flag."
    /// \throws JIOException "FileOutputStream::JSeek(). Stream returned fail() flag."
    void JSeek(int64_t position) override;

private:
    enum Mode : int32_t { closed = -1, ownedFile = 0, hostFile = 1, standardStream = 2 };

    bool flushed();

    Mode mode_;
    std::FILE* file_ = nullptr;
    std::ostream* stream_ = nullptr;
};
