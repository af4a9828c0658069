/// \file
/// BlockList: a list that grows without moving its elements.
#pragma once

#include "runtime/Storage.h"

#include <cstddef>
#include <type_traits>
#include <vector>

namespace kel {

/// A growing list of plain data. Elements lie in blocks that never move, so a million of them are
/// not copied to make room for one more.
template <class T> class BlockList {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    std::size_t size() const { return size_; }
    T& operator[](std::size_t place) { return blocks_[place / blockSize][place % blockSize]; }
    const T& operator[](std::size_t place) const {
        return blocks_[place / blockSize][place % blockSize];
    }

    void append(const T& element) {
        if (next_ == blockEnd_) {
            beginBlock();
        }
        std::construct_at(next_++, element);
        ++size_;
    }

    /// Drops the elements from a place on; their storage is kept for later ones.
    void truncate(std::size_t size) noexcept {
        size_ = size;
        const std::size_t inBlock = size % blockSize;
        T* const block = inBlock == 0 ? nullptr : blocks_[size / blockSize].get();
        next_ = inBlock == 0 ? nullptr : block + inBlock;
        blockEnd_ = inBlock == 0 ? nullptr : block + blockSize;
    }

private:
    static constexpr std::size_t blockSize = 1024;

    /// Not initialized: zeroes would only be overwritten.
    using Block = Storage<T[]>;

    /// Continues in the block after a full one.
    void beginBlock() {
        const std::size_t place = size_ / blockSize;
        if (place == blocks_.size()) {
            blocks_.push_back(Block(static_cast<T*>(allocateOrThrow(blockSize * sizeof(T)))));
        }
        next_ = blocks_[place].get();
        blockEnd_ = next_ + blockSize;
    }

    std::vector<Block> blocks_;
    std::size_t size_ = 0;
    T* next_ = nullptr;     ///< the next element's place
    T* blockEnd_ = nullptr; ///< of its block; next_ if it needs another block
};

} // namespace kel
