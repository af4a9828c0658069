/// \file
/// BlockList: a list that grows without moving its elements.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace kel {

/// A growing list of plain data. Elements lie in blocks that never move, so a million of them are
/// not copied to make room for one more.
template <class T> class BlockList {
public:
    std::size_t size() const { return size_; }
    T& operator[](std::size_t place) { return blocks_[place / blockSize][place % blockSize]; }
    const T& operator[](std::size_t place) const {
        return blocks_[place / blockSize][place % blockSize];
    }

    void append(const T& element) {
        if (size_ == blocks_.size() * blockSize) {
            blocks_.push_back(std::make_unique<T[]>(blockSize));
        }
        (*this)[size_++] = element;
    }

    /// Drops the elements from the given index on. Their storage is kept for later elements.
    void truncate(std::size_t size) noexcept { size_ = size; }

private:
    static constexpr std::size_t blockSize = 1024;

    std::vector<std::unique_ptr<T[]>> blocks_;
    std::size_t size_ = 0;
};

} // namespace kel
