#include "runtime/PointerBlock.h"

#include "platform/Inline.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr int32_t leastRoom = 2;

/// Recording an element in a table takes about as long as comparing so many elements.
constexpr std::size_t stepsToRecord = 8;

PointerBlock::Steps* stepCounter = nullptr;

/// Counts elements that a removal moves.
void recordMoves(int32_t count) {
    if (stepCounter != nullptr) {
        stepCounter->moved += static_cast<uint64_t>(count);
    }
}

} // namespace

PointerBlock::Steps* PointerBlock::exchangeStepCounter(Steps* counter) {
    return std::exchange(stepCounter, counter);
}

// ---- Storage -----------------------------------------------------------------------------------

void PointerBlock::grow(int32_t more) {
    if (more > INT32_MAX - size_) {
        throwOutOfMemory();
    }
    if (isLong() && head().freed > 0) {
        const bool isMuch = head().freed > size_ / 2; // then this happens rarely
        moveToBeginning();
        if (isMuch && more <= room_ - size_) {
            return;
        }
    }
    const int32_t needed = size_ + more;
    const int64_t growth = isLong() ? room_ / 2 : room_;
    const auto ahead = static_cast<int32_t>(std::min<int64_t>(room_ + growth, INT32_MAX));
    const int32_t room = std::max({needed, ahead, more == 1 ? leastRoom : 0});
    // Perhaps there is only memory for what is needed.
    if (!tryResize(room) && needed > room_ && (room == needed || !tryResize(needed))) {
        throwOutOfMemory();
    }
}

/// Changes the room of a block without free room at the beginning. \return false without memory
bool PointerBlock::tryResize(int32_t room) noexcept {
    if (room > shortRoom) {
        return tryResizeWithHead(room);
    }
    void* moved = platform::reallocateSized(elements_, bytesOf(room_), bytesOf(room));
    if (moved == nullptr) {
        return false;
    }
    elements_ = static_cast<void**>(moved);
    room_ = room;
    return true;
}

KEL_NEVER_INLINE bool PointerBlock::tryResizeWithHead(int32_t room) noexcept {
    // not reached: 64-bit systems can express every room
    if (static_cast<uint64_t>(room) * sizeof(void*) + sizeof(Head) > SIZE_MAX) {
        return false;
    }
    const bool hadHead = isLong();
    auto* moved = static_cast<char*>(platform::reallocateSized(
        hadHead ? static_cast<void*>(&head()) : elements_,
        bytesOf(room_) + (hadHead ? sizeof(Head) : 0), bytesOf(room) + sizeof(Head)));
    if (moved == nullptr) {
        return false;
    }
    if (!hadHead) {
        std::memmove(moved + sizeof(Head), moved, bytesOf(size_));
        ::new (static_cast<void*>(moved)) Head{nullptr, 0, 0};
    }
    elements_ = reinterpret_cast<void**>(moved + sizeof(Head));
    room_ = room;
    return true;
}

KEL_NEVER_INLINE void PointerBlock::moveToBeginning() noexcept {
    const Head moved = head();
    if (moved.freed > 0) {
        void** first = elements_ - moved.freed;
        std::memmove(first, elements_, bytesOf(size_));
        elements_ = first;
        room_ += moved.freed;
        ::new (static_cast<void*>(&head())) Head{moved.table, moved.passed, 0};
    }
}

void PointerBlock::freeBlock() noexcept {
    if (isLong()) {
        dropTable();
        moveToBeginning();
        platform::deallocateSized(&head(), bytesOf(room_) + sizeof(Head));
    } else {
        platform::deallocateSized(elements_, bytesOf(room_));
    }
    elements_ = nullptr;
    size_ = 0;
    room_ = 0;
}

void PointerBlock::open(int32_t index) noexcept {
    std::memmove(elements_ + index + 1, elements_ + index, bytesOf(size_ - index));
    ++size_;
}

void PointerBlock::closeInLong(int32_t index) noexcept {
    if (index == size_ - 1) {
        --size_;
        return;
    }
    if (index >= size_ / 2 || room_ - 1 <= shortRoom) { // a long list remains one
        recordMoves(size_ - index - 1);
        close(index);
        return;
    }
    recordMoves(index);
    const Head moved = head();
    std::memmove(elements_ + 1, elements_, bytesOf(index));
    ++elements_;
    --size_;
    --room_;
    ::new (static_cast<void*>(&head())) Head{moved.table, moved.passed, moved.freed + 1};
}

void PointerBlock::moveToEnd(const int32_t* places, int32_t count) noexcept {
    int32_t kept = places[0]; // the number of elements before this one that stay
    recordMoves(size_ - kept);
    const int32_t* next = places;
    for (int32_t i = kept; i < size_; ++i) {
        if (next != places + count && *next == i) {
            ++next;
        } else {
            std::swap(elements_[kept++], elements_[i]);
        }
    }
}

void PointerBlock::swap(PointerBlock& other) noexcept {
    std::swap(elements_, other.elements_);
    std::swap(size_, other.size_);
    std::swap(room_, other.room_);
}

// ---- Searches ----------------------------------------------------------------------------------

void PointerBlock::dropTable() const noexcept {
    delete std::exchange(head().table, nullptr);
}

void PointerBlock::recordSearch(int32_t passed) const noexcept {
    if (stepCounter != nullptr) {
        stepCounter->searched += static_cast<uint64_t>(passed) + 1;
    }
    Head& state = head();
    state.passed += static_cast<std::size_t>(passed);
    if (state.passed / stepsToRecord > static_cast<std::size_t>(size_)) {
        state.passed = 0;
        dropTable();
        state.table = IdentityTable::make();
    }
}

} // namespace kel
