/// \file
/// BinaryTreeWriter: one walk of the binary writer over a value.
#pragma once

#include "serial/IdentityTable.h"
#include "serial/RecordBuffer.h"
#include "values/ChildCursor.h"

#include <vector>

namespace kel {

/// Encodes one value and all below it, with a stack of its own instead of recursion. The rules of
/// the format stand in docs/binary-format.md.
class BinaryTreeWriter {
public:
    /// Appends to out; written tells which values were written before and learns the new ones.
    BinaryTreeWriter(RecordBuffer& out, IdentityTable& written) : out_(out), written_(written) {}

    BinaryTreeWriter(const BinaryTreeWriter&) = delete;
    BinaryTreeWriter& operator=(const BinaryTreeWriter&) = delete;

    /// A walk that was broken off leaves its marks nowhere: the values whose records are not
    /// complete are forgotten.
    ~BinaryTreeWriter();

    /// Encodes value. After a failure the buffer holds the record as far as it went, with zero for
    /// the lengths that are not known.
    /// \throws KELIOException "General KEL exception." for a kind without a binary form
    /// \throws KELIOException "Cannot write a value that contains itself." for one that cannot be
    ///         referred to because its identity is all zero
    void write(const KEL_Impl& value);

private:
    /// A container whose length is still to come.
    struct Level {
        ChildCursor cursor;
        JHashCode identity;
        uint8_t* length;
        uint64_t contentsStart;
    };

    void writeRecord(const KEL_Impl& value);
    void writePayload(const KEL_Impl& value, int32_t kind, const JHashCode& identity);
    void writeReference(const JHashCode& identity);
    void writeBytes(const void* bytes, std::size_t count);
    uint8_t* writeLength(uint64_t length);
    void open(const KEL_Impl& container, const JHashCode& identity);
    void next();
    void close(const Level& level);

    RecordBuffer& out_;
    IdentityTable& written_;
    std::vector<Level> levels_;
    JHashCode incomplete_; ///< of the record being written, zero when it is complete
};

} // namespace kel
