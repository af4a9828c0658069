/// \file
/// TextBlocks: texts that never move.
#pragma once

#include "runtime/Storage.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

namespace kel {

/// Null-terminated texts, one after the other in blocks. A text keeps its place until it is
/// removed. A block whose last text is removed is freed; the newest one is used again first.
class TextBlocks {
public:
    TextBlocks() = default;
    TextBlocks(const TextBlocks&) = delete;
    TextBlocks& operator=(const TextBlocks&) = delete;
    ~TextBlocks() {
        while (newest_ != nullptr) {
            free(std::exchange(newest_, newest_->older));
        }
    }

    /// Returns whether there was ever room for a text.
    bool wasUsed() const { return newest_ != nullptr; }

    /// Makes room for texts that take this many bytes together, each with its null byte.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoom(std::size_t bytes) {
        if (newest_ != nullptr && bytes <= newest_->size - newest_->used) {
            return;
        }
        // Each block is twice as large as the one before, so there are few, and remove finds the
        // one of a text in a short time.
        constexpr std::size_t least = 64;
        const std::size_t size =
            newest_ == nullptr ? bytes : std::max({bytes, 2 * newest_->size, least});
        char* storage = Allocator<char>().allocate(sizeof(Block) + size);
        if (newest_ != nullptr && newest_->count == 0) { // its last text was removed
            free(std::exchange(newest_, newest_->older));
        }
        newest_ = new (storage) Block{newest_, size, 0, 0};
    }

    /// Copies a text, for which there is room. \return the copy
    const char* add(std::string_view text) {
        char* copy = newest_->text() + newest_->used;
        std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
        newest_->used += text.size() + 1;
        ++newest_->count;
        return copy;
    }

    /// Removes a text that add has returned.
    void remove(const char* text) {
        Block** link = &newest_;
        while (!(*link)->contains(text)) {
            link = &(*link)->older;
        }
        Block* block = *link;
        if (--block->count > 0) {
            return;
        }
        if (block == newest_) {
            block->used = 0;
        } else {
            *link = block->older;
            free(block);
        }
    }

private:
    /// The head of a block, whose texts follow it.
    struct Block {
        Block* older;
        std::size_t size;  ///< of the texts' room, in bytes
        std::size_t used;  ///< of these bytes
        std::size_t count; ///< the texts that are not removed

        char* text() { return reinterpret_cast<char*>(this + 1); }
        bool contains(const char* place) {
            constexpr std::less<const char*> isBefore;
            return !isBefore(place, text()) && isBefore(place, text() + size);
        }
    };

    static void free(Block* block) {
        Allocator<char>().deallocate(reinterpret_cast<char*>(block), sizeof(Block) + block->size);
    }

    Block* newest_ = nullptr;
};

} // namespace kel
