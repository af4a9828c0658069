/// \file
/// KEL_MemBlock: a fixed-size block of raw bytes as a value.
#pragma once

#include <kel/KEL.h>

/// Copying bytes in and out. The one test of the bounds is that offset + count, in 32-bit
/// arithmetic, does not exceed the size: negative numbers are not refused. The part of a range that
/// lies outside the block is skipped, memory outside is never touched.
class KELInterface_MemBlock_V1 {
public:
    /// Copies count bytes from offset on to destination; a null destination does nothing. Loads
    /// the bytes first if the block still waits for its source.
    /// \throws KELMemBlockException "Cannot read past the end of the memory block."
    /// \throws KELOutOfMemoryException "Out of memory!" when loading needs more than there is
    virtual void read(int32_t offset, void* destination, int32_t count) = 0;
    /// Copies count bytes from source into the block from offset on and notifies the observers; a
    /// null source does nothing.
    /// \throws KELMemBlockException "Cannot write past the end of the memory block."
    virtual void write(int32_t offset, const void* source, int32_t count) = 0;
    /// The number of bytes, fixed when the block is made.
    virtual int32_t getSize() const = 0;

protected:
    ~KELInterface_MemBlock_V1() = default;
};

/// A block of bytes. Kind 5. Binary files carry its bytes, text files only its size.
class KEL_MemBlock : public virtual KEL, public virtual KELInterface_MemBlock_V1 {
protected:
    ~KEL_MemBlock() = default;
};

/// A new block of size bytes, copied from bytes or zero if that is null; count 1, owned by the
/// caller. The caller guarantees size bytes. Null when the object cannot be allocated.
/// \throws KELOutOfMemoryException "Out of memory!" when the bytes cannot be allocated, also for a
///         negative size
KEL_API KEL_MemBlock* KEL_CALL CreateKELMemBlock(int32_t size, const void* bytes);
