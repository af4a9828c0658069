#include "runtime/MemoryPool.h"

#include "platform/Memory.h"

#include <kel/JException.h>

#include <algorithm>
#include <cstring>
#include <new>

MemoryPool::MemoryPool(uint32_t size, uint32_t increment)
    : size_(size), increment_(increment),
      bytes_(static_cast<unsigned char*>(kel::platform::allocateZeroed(1, size))) {
    if (bytes_ == nullptr) {
        throw JOutOfMemoryException("MemoryPool out of memory.");
    }
}

MemoryPool::~MemoryPool() {
    kel::platform::deallocate(bytes_);
    // The rest of the chain is freed segment by segment, not one inside the other.
    JPointer<MemoryPool> rest(next_.detach());
    while (rest.isValid()) {
        MemoryPool* behind = rest->next_.detach();
        rest = behind;
    }
}

uint32_t MemoryPool::getSize() const {
    return lastStart_ + last_->size_;
}

// Adds a segment of at least size bytes, or of fewer where positions would exceed 32 bits.
void MemoryPool::append(uint64_t size) {
    const uint32_t total = getSize();
    const uint64_t wanted = std::max<uint64_t>(size, increment_);
    const uint64_t most = UINT32_MAX - total;
    auto* segment =
        new (std::nothrow) MemoryPool(static_cast<uint32_t>(std::min(wanted, most)), increment_);
    if (segment == nullptr) {
        throw JOutOfMemoryException("MemoryPool out of memory.");
    }
    last_->next_ = segment;
    last_ = segment;
    lastStart_ = total;
}

void MemoryPool::write(uint32_t index, const void* source, uint32_t count) {
    // Grow first, so that a failure leaves the contents alone.
    const uint64_t needed = uint64_t{index} + count;
    if (needed > UINT32_MAX) {
        throw JOutOfMemoryException("MemoryPool out of memory.");
    }
    // The next byte of a text that is collected byte by byte nearly always belongs in the last
    // segment. Starting there keeps the cost of collecting linear.
    MemoryPool* pool = index >= lastStart_ ? last_ : this;
    index -= index >= lastStart_ ? lastStart_ : 0;
    if (needed > getSize()) {
        append(needed - getSize());
    }
    const auto* from = static_cast<const unsigned char*>(source);
    for (; count > 0; pool = pool->next_.get()) {
        if (index >= pool->size_) {
            index -= pool->size_;
            continue;
        }
        const uint32_t here = std::min(count, pool->size_ - index);
        std::memcpy(pool->bytes_ + index, from, here);
        from += here;
        count -= here;
        index = 0;
    }
}

void MemoryPool::read(uint32_t index, void* destination, uint32_t count) const {
    if (uint64_t{index} + count > getSize()) {
        throw JIOException("MemoryPool read: out of bounds.");
    }
    auto* to = static_cast<unsigned char*>(destination);
    for (const MemoryPool* pool = this; count > 0; pool = pool->next_.get()) {
        if (index >= pool->size_) {
            index -= pool->size_;
            continue;
        }
        const uint32_t here = std::min(count, pool->size_ - index);
        std::memcpy(to, pool->bytes_ + index, here);
        to += here;
        count -= here;
        index = 0;
    }
}
