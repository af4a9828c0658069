/// \file
/// OutputBytes: an output in memory.
#pragma once

#include <cstdint>
#include <cstdio>
#include <deque>
#include <list>
#include <string>
#include <string_view>

namespace kel::tool {

/// Bytes that follow each other and lie in several places. Their owner is an OutputBytes.
class Pieces {
public:
    /// Appends bytes, to the last piece if they lie directly after it.
    void append(std::string_view bytes);

    /// Appends other pieces.
    void append(Pieces pieces);

    const std::list<std::string_view>& list() const { return list_; }

    /// Returns the number of bytes in all pieces.
    uint64_t size() const { return size_; }

private:
    std::list<std::string_view> list_;
    uint64_t size_ = 0;
};

/// The bytes of an output, kept until the whole output is known. Nothing is copied when pieces are
/// put in order.
class OutputBytes {
public:
    /// Keeps bytes as long as this object, but not yet as part of the output.
    /// \return where they are kept
    char* keep(std::string bytes) { return kept_.emplace_back(std::move(bytes)).data(); }

    /// Appends pieces to the output. The bytes must have been kept.
    void append(Pieces pieces) { output_.append(std::move(pieces)); }

    /// Keeps bytes and appends them to the output.
    void append(std::string bytes);

    /// Returns a copy of the whole output in one piece.
    std::string joined() const;

    /// Writes the output to the file.
    /// \throws Failure unwritten with the system's reason as its message
    void writeTo(std::FILE* file) const;

private:
    std::deque<std::string> kept_;
    Pieces output_;
};

/// Writes bytes to the file. \throws Failure unwritten with the system's reason as its message
void writeBytes(std::string_view bytes, std::FILE* file);

} // namespace kel::tool
