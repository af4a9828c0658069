/// \file
/// StringReader: an input stream over a text in memory.
#pragma once

#include "streams/JInputStream.h"

#include <string>

/// Reads a copy of a caller's text.
class StringReader : public JInputStream {
public:
    /// Copies length bytes of text, NULs included. Null text or a negative length is empty.
    StringReader(const char* text, int64_t length);

    /// Returns the next byte, or -1 at the end and when closed.
    int32_t JRead() override;

    /// Reads at most count bytes to buffer + offset and returns how many; 0 at the end.
    /// \throws JIOException "JInputStream.read : buff=NULL" for a null buffer
    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override;

    /// Ends the stream.
    void JClose() override { closed_ = true; }

    /// Returns the position of the next byte.
    int64_t JTell() override;

    /// Moves to a position, up to the end of the text.
    /// \throws JIOException "StringReader::JSeek(). Cannot seek to negative position."
    /// \throws JIOException "StringReader::JSeek(). Stream returned fail() flag." after the end
    void JSeek(int64_t position) override;

private:
    std::string text_;
    std::size_t place_ = 0; // at most the text's size
    bool closed_ = false;
};
