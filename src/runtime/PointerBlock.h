/// \file
/// PointerBlock: the storage of a list of pointers.
#pragma once

#include "runtime/IdentityTable.h"

#include <cstdint>
#include <cstring>

namespace kel {

/// Pointers in order, in one block that grows by half at least, so appending many pointers one by
/// one takes linear time. It does not know what they point to. Indices are not checked: callers
/// know them to be valid.
///
/// Lists are parts of values, so this object is small, and so are the blocks of short lists. Only
/// the block of a long list has a head, just before the first pointer, for what makes long lists
/// fast: a table for searches, and free room at the beginning. Removing an element moves those
/// before it or those after it, whichever are fewer.
class PointerBlock {
public:
    PointerBlock() = default;
    PointerBlock(const PointerBlock&) = delete;
    PointerBlock& operator=(const PointerBlock&) = delete;
    ~PointerBlock() {
        if (hasBlock()) {
            freeBlock();
        }
    }

    int32_t size() const { return size_; }

    /// Returns whether there is a block to free.
    bool hasBlock() const { return elements_ != nullptr; }

    /// Makes room for this many more elements; storing them then needs no memory for the block.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoom(int32_t more) {
        if (more > room_ - size_) {
            grow(more);
        }
    }

    /// Counts of what long lists do.
    struct Steps {
        uint64_t searched = 0; ///< elements that searches look at
        uint64_t moved = 0;    ///< elements that removals move
    };

    /// Installs counts to which every long list adds what it does (null for none), and returns the
    /// previous ones. For tests; not thread-safe.
    static Steps* exchangeStepCounter(Steps* counter);

protected:
    /// Returns whether searches of this list have a table. The table can lack the last elements.
    bool hasTable() const { return isLong() && head().table != nullptr; }
    bool isLong() const { return room_ > shortRoom; }
    IdentityTable& table() const { return *head().table; }

    /// Frees the table. It is also the way to go on when the table finds no memory.
    void dropTable() const noexcept;

    /// Records how many elements a search of a long list has passed over in vain. Once searches
    /// have passed over as many as making a table costs, the list gets a table. If it has one
    /// already, that one has become inexact, and a new one replaces it.
    void recordSearch(int32_t passed) const noexcept;

    /// Opens a gap of one element, for which there is room.
    void open(int32_t index) noexcept;

    /// Removes an element of a short list and closes the gap.
    void close(int32_t index) noexcept {
        --size_;
        std::memmove(elements_ + index, elements_ + index + 1, bytesOf(size_ - index));
    }

    /// Removes an element of a long list and closes the gap.
    void closeInLong(int32_t index) noexcept;

    /// Moves the elements at some places to the end, in any order. The others keep their order.
    /// \param places from the least one to the greatest one, each once
    /// \param count of the places, at least 1
    void moveToEnd(const int32_t* places, int32_t count) noexcept;

    /// Moves the elements of a long list to the beginning of the block.
    void moveToBeginning() noexcept;

    /// Frees the block, which there is.
    void freeBlock() noexcept;

    void swap(PointerBlock& other) noexcept;

    void** elements_ = nullptr;
    int32_t size_ = 0;

private:
    static std::size_t bytesOf(int32_t count) {
        return static_cast<std::size_t>(count) * sizeof(void*);
    }

    /// The largest room of a short list. Comparing so many elements is fast.
    static constexpr int32_t shortRoom = 64;

    struct Head {
        IdentityTable* table; ///< null for none
        std::size_t passed;   ///< elements that searches passed over since the last new table
        int32_t freed;        ///< room at the beginning of the block, in elements
    };

    Head& head() const { return reinterpret_cast<Head*>(elements_)[-1]; }
    void grow(int32_t more);
    bool tryResize(int32_t room) noexcept;
    bool tryResizeWithHead(int32_t room) noexcept;

    int32_t room_ = 0; ///< from the first element on
};

} // namespace kel
