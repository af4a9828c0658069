/// \file
/// KEL_MemBlock: a fixed-size block of raw bytes as a value.
#pragma once

#include <kel/KEL.h>

/// Operations of a memory block. The only bounds check is that offset + count, in 32-bit
/// arithmetic, does not exceed the size. Negative numbers are not refused. The part of a range that
/// lies outside the block is skipped; memory outside the block is never touched.
class KELInterface_MemBlock_V1 {
public:
    /// Copies count bytes, starting at offset, to destination. A null destination does nothing. A
    /// block that has not been loaded from its source yet is loaded first.
    /// \throws KELMemBlockException "Cannot read past the end of the memory block."
    /// \throws KELOutOfMemoryException "Out of memory!" if there is not enough memory to load the
    ///         block
    virtual void read(int32_t offset, void* destination, int32_t count) = 0;
    /// Copies count bytes from source into the block, starting at offset, and notifies the
    /// observers. A null source does nothing. Needs no memory.
    /// \throws KELMemBlockException "Cannot write past the end of the memory block."
    virtual void write(int32_t offset, const void* source, int32_t count) = 0;
    /// Returns the number of bytes, which is fixed when the block is created.
    virtual int32_t getSize() const = 0;

protected:
    ~KELInterface_MemBlock_V1() = default;
};

/// A block of bytes. Kind 5. Binary files contain its bytes. Text files contain only its size.
class KEL_MemBlock : public virtual KEL, public virtual KELInterface_MemBlock_V1 {
protected:
    ~KEL_MemBlock() = default;
};

/// Returns a new block of size bytes with count 1, owned by the caller. The bytes are copied from
/// bytes, or are zero if bytes is null. The caller guarantees that size bytes exist. Returns null
/// if the object cannot be allocated.
/// \throws KELOutOfMemoryException "Out of memory!" if the bytes cannot be allocated, and for a
///         negative size
KEL_API KEL_MemBlock* KEL_CALL CreateKELMemBlock(int32_t size, const void* bytes);
