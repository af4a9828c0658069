/// \file
/// BinaryTreeWriter: one walk of the binary writer over a value.
#pragma once

#include "serial/binary/IdentitySet.h"
#include "serial/binary/RecordBuffer.h"
#include "values/ChildCursor.h"

namespace kel {

/// A String is longer than any reader accepts. Nothing of the value may be written.
struct StringTooLong {};

/// Encodes one value and everything below it, with a stack of its own instead of recursion.
/// docs/binary-format.md describes the rules of the format.
class BinaryTreeWriter {
public:
    /// Appends to out. written knows which values were written before and remembers the new ones.
    /// As long as no value with a given identity was written, a value that is not shared cannot
    /// have been written before, and written is not searched. A String can have longestString
    /// bytes.
    BinaryTreeWriter(RecordBuffer& out, IdentitySet& written, uint64_t longestString)
        : out_(out), written_(written), longestString_(longestString) {}

    BinaryTreeWriter(const BinaryTreeWriter&) = delete;
    BinaryTreeWriter& operator=(const BinaryTreeWriter&) = delete;

    /// Removes the marks of an interrupted walk and forgets the values whose records are not
    /// complete.
    ~BinaryTreeWriter();

    /// Encodes value. After a failure the buffer holds the incomplete record, with zero for the
    /// lengths that are not known.
    /// \throws KELIOException "General KEL exception." for a kind without a binary form
    /// \throws KELIOException "Cannot write a value that contains itself." for one that cannot be
    ///         referred to because its identity is all zero
    /// \throws StringTooLong by value
    void write(const KEL_Impl& value);

private:
    /// A container whose length is not yet known.
    struct Level {
        ChildCursor cursor;
        uint8_t* record;
        std::size_t contentsStart;
        uint32_t number; ///< in the set of written values
    };

    bool enter(const KEL_Impl& value);
    void writeRecord(const KEL_Impl& value);
    void writePayload(const KEL_Impl& value, KELKind kind, uint8_t* record);
    void writeReference(const JHashCode& identity);
    void writeBytes(uint8_t* record, const void* bytes, std::size_t count);
    void commitPrefix(uint8_t* record, uint64_t length, std::size_t more);
    void open(const KEL_Impl& container, uint8_t* record);
    void next();
    void close(const Level& level);

    RecordBuffer& out_;
    IdentitySet& written_;
    uint64_t longestString_;
    Vector<Level> levels_;
    uint32_t incomplete_ = IdentityIndex::none; ///< number of the value whose record is begun
};

} // namespace kel
