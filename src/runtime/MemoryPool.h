/// \file
/// MemoryPool: a chained byte store.
///
/// It sits beneath the strings, which can be made from it.
#pragma once

#include <kel/JPointer.h>

/// A growing run of bytes in a chain of fixed segments: growing never moves what is stored.
class MemoryPool : public virtual JObject {
public:
    /// One zero-filled segment of size bytes; a chain grows by segments of increment bytes, or of
    /// what a write needs if that is more.
    /// \throws JOutOfMemoryException "MemoryPool out of memory."
    MemoryPool(uint32_t size, uint32_t increment);

    MemoryPool(const MemoryPool&) = delete;
    MemoryPool& operator=(const MemoryPool&) = delete;
    ~MemoryPool() override;

    /// The bytes of all segments together, used or not.
    uint32_t getSize() const;

    /// Copies count bytes to position index, adding segments as needed. The caller grows a pool
    /// from its front: index may lie anywhere, what lies between is zero.
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
