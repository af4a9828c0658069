/// \file
/// MemoryPool: a chained byte store.
///
/// Strings can be made from it.
#pragma once

#include <kel/JPointer.h>

/// A growing run of bytes in a chain of fixed segments. Growing never moves the stored bytes.
class MemoryPool : public virtual JObject {
public:
    /// Makes one zero-filled segment of size bytes. The chain grows by segments of increment bytes,
    /// or of the number that a write needs if that is more.
    /// \throws JOutOfMemoryException "MemoryPool out of memory."
    MemoryPool(uint32_t size, uint32_t increment);

    MemoryPool(const MemoryPool&) = delete;
    MemoryPool& operator=(const MemoryPool&) = delete;
    ~MemoryPool() override;

    /// Returns the number of bytes of all segments together, used or not.
    uint32_t getSize() const;

    /// Copies count bytes to position index, adding segments as needed. Call this on the first
    /// segment of the chain. The index can have any value; bytes that were never written are zero.
    /// \throws JOutOfMemoryException "MemoryPool out of memory."; nothing is written then
    void write(uint32_t index, const void* source, uint32_t count);

    /// Copies count bytes from position index to destination.
    /// \throws JIOException "MemoryPool read: out of bounds." when the segments hold fewer
    void read(uint32_t index, void* destination, uint32_t count) const;

private:
    void append(uint64_t size);

    JPointer<MemoryPool> next_;
    MemoryPool* last_ = this; // last segment of the chain that starts here
    uint32_t lastStart_ = 0;  // position of its first byte
    uint32_t size_;
    uint32_t increment_;
    unsigned char* bytes_;
};
