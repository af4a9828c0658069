/// \file
/// CollectedText: the characters that a recogniser has taken.
#pragma once

#include "runtime/MemoryPool.h"

#include <cstdint>
#include <kel/JPointer.h>
#include <kel/JString.h>

namespace kel {

/// Characters collected one by one in a MemoryPool.
class CollectedText {
public:
    /// Appends one character.
    /// \throws JOutOfMemoryException "MemoryPool out of memory."
    void append(int32_t c) {
        if (pool_.isNull()) {
            pool_ = new MemoryPool(segmentSize, segmentSize);
        }
        const auto byte = static_cast<unsigned char>(c);
        pool_->write(count_, &byte, 1);
        ++count_;
    }

    /// Forgets all characters, and frees the memory of a long text.
    void clear() {
        if (count_ > segmentSize) {
            pool_.clear();
        }
        count_ = 0;
    }

    /// Returns the number of characters, NULs included.
    uint32_t count() const { return count_; }

    /// Makes a string of the characters; the caller owns it.
    JString* toString() const {
        return count_ == 0 ? new JString("") : new JString(*pool_, 0, count_);
    }

private:
    static constexpr uint32_t segmentSize = 80;

    JPointer<MemoryPool> pool_; // made with the first character: many machines never take one
    uint32_t count_ = 0;
};

} // namespace kel
