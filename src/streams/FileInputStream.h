/// \file
/// FileInputStream: bytes of a file, a host's FILE or a standard stream.
#pragma once

#include "streams/JInputStream.h"

#include <cstdio>
#include <istream>

/// Reads a file by name, which it owns and closes, or a host's FILE (opened in binary mode) or
/// std::istream, which must outlive it and remain open. Pipes can be read, but they cannot seek.
///
/// Bytes that arrived before the medium failed are handed out first, and the next read throws. A
/// read after that calls the medium again, for the byte after the last one handed out. A standard
/// stream remains bad instead, whatever its buffer threw.
class FileInputStream : public JInputStream {
public:
    /// Opens a file for reading. The name consists of bytes on Linux and is UTF-8 on Windows.
    /// \throws JIOException "FileInputStream. Cannot open file.", also for a null name
    explicit FileInputStream(const char* name);

    /// Reads the host's file from its current position.
    /// \throws JIOException "FileInputStream. Cannot open file." for a null handle
    explicit FileInputStream(std::FILE* file);

    /// Reads the host's stream from its current position.
    explicit FileInputStream(std::istream& stream);

    FileInputStream(const FileInputStream&) = delete;
    FileInputStream& operator=(const FileInputStream&) = delete;

    /// Closes an owned file. A failure to close is lost here, so call JClose first.
    ~FileInputStream() override;

    /// Returns the next byte, or -1 at end of input and when closed.
    /// \throws JIOException "FileInputStream::JRead(). Stream returned error:32"
    /// \throws JIOException "FileInputStream::JRead(). Stream returned bad() flag."
    /// \throws JIOException "FileInputStream::JRead(). Stream returned fail() flag."
    int32_t JRead() override;

    /// Reads at most count bytes to buffer + offset and returns how many; 0 at end of input, when
    /// closed, and for a count below 1. Throws only when the medium fails before the first byte.
    /// \throws JIOException "FileInputStream::JRead(uchar*,int,int). Buffer=NULL"
    /// \throws JIOException "FileInputStream::JRead(uchar *, int, int). Stream returned error:32"
    /// \throws JIOException with the bad() and fail() messages of JRead()
    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override;

    /// Ends the stream and closes an owned file.
    /// \throws JIOException "FileInputStream::JClose() error."; the stream is closed all the same
    void JClose() override;

    /// Returns the position, or -1 when closed or without positions.
    /// \throws JIOException "FileInputStream::JSeek(). Stream returned bad() flag." when a standard
    ///         stream's buffer throws
    int64_t JTell() override;

    /// Moves to a position, even after the end of input was reached. A failure that no read has
    /// thrown yet is forgotten. A closed stream cannot move.
    /// \throws JIOException "FileInputStream::JSeek(). Cannot seek to negative position."
    /// \throws JIOException "FileInputStream::JSeek(long). Stream returned error:32"
    /// \throws JIOException "FileInputStream::JSeek(). Stream returned bad() flag."
    /// \throws JIOException "FileInputStream::JSeek(). Stream returned fail() flag."
    void JSeek(int64_t position) override;

private:
    enum Mode : int32_t { closed = -1, ownedFile = 0, hostFile = 1, standardStream = 2 };

    /// Reads from the file. \return the number of bytes; -1 for a failure before the first one
    int32_t readFile(uint8_t* out, int32_t count);

    Mode mode_;
    bool failurePending_ = false; // the file failed after bytes that a read handed out
    std::FILE* file_ = nullptr;
    std::istream* stream_ = nullptr;
};
