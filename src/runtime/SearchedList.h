/// \file
/// SearchedList: a list of pointers that can be searched often.
#pragma once

#include "platform/Inline.h"
#include "runtime/PointerBlock.h"

#include <utility>

namespace kel {

/// An ordered list of pointers, none of them null, to Ts that it does not own. Indices are not
/// checked. A failed operation leaves the list unchanged.
///
/// A search compares one element after the other. A long list that is searched often gets a table
/// (IdentityTable), and then a search takes the same short time for every element. The class Keys
/// has three functions: matches(element, wanted) compares, and keyOf returns the identity in the
/// table, for an element and for everything that can be searched for. If matches is true, both
/// have the same identity, which does not change while the element is in the list.
template <class T, class Keys> class SearchedList : private PointerBlock {
public:
    using PointerBlock::freeBlock;
    using PointerBlock::hasBlock;
    using PointerBlock::makeRoom;
    using PointerBlock::size;

    T* operator[](int32_t index) const { return static_cast<T*>(elements_[index]); }

    /// Returns the first index whose element matches; -1 if none does.
    template <class Wanted> int32_t indexOf(Wanted wanted) const {
        return isLong() ? searchLong(wanted) : scan(wanted, 0);
    }

    /// Appends an element.
    /// \throws JOutOfMemoryException "Out of memory!"
    void append(T* element) {
        makeRoom(1);
        elements_[size_++] = untyped(element);
    }

    /// Inserts an element at an index from 0 to size().
    /// \throws JOutOfMemoryException "Out of memory!"
    void insert(T* element, int32_t index) {
        makeRoom(1);
        open(index);
        elements_[index] = untyped(element);
        if (hasTable() && index < table().size() && !table().insert(keyOf(element), index)) {
            dropTable();
        }
    }

    /// Replaces an element and returns the one before.
    T* exchange(T* element, int32_t index) {
        if (hasTable()) {
            recordExchange(element, index);
        }
        return static_cast<T*>(std::exchange(elements_[index], untyped(element)));
    }

    /// Exchanges two elements.
    void swap(int32_t a, int32_t b) {
        if (hasTable()) {
            swapRecorded(a, b);
        } else {
            std::swap(elements_[a], elements_[b]);
        }
    }

    /// Removes an element, which it returns, and closes the gap.
    T* take(int32_t index) {
        T* taken = (*this)[index];
        if (isLong()) {
            closeInLong(taken, index);
        } else {
            close(index);
        }
        return taken;
    }

    /// Removes the elements at some places in one pass, and then passes each to release.
    /// \param places from the least one to the greatest one, each once
    /// \param count of the places
    template <class Release>
    void takeEach(const int32_t* places, int32_t count, const Release& release) {
        if (count == 1) {
            release(take(*places)); // which keeps the table
            return;
        }
        if (count > 0) {
            if (hasTable()) {
                dropTable();
            }
            moveToEnd(places, count);
        }
        for (; count > 0; --count) {
            release(static_cast<T*>(elements_[--size_]));
        }
    }

    /// Removes every element, the last one first, passes each to release, and keeps the room. The
    /// list is empty afterwards, even if release changes it.
    template <class Release> void takeAll(const Release& release) {
        while (size_ > 0) {
            if (hasTable()) {
                dropTable();
            }
            release(static_cast<T*>(elements_[--size_]));
        }
        if (isLong()) {
            moveToBeginning();
        }
    }

    /// Exchanges all elements with another list.
    void swap(SearchedList& other) noexcept { PointerBlock::swap(other); }

private:
    static void* untyped(T* element) {
        return const_cast<void*>(static_cast<const void*>(element)); // T can be constant
    }

    JHashCode keyOf(const T* element) const { return Keys::keyOf(element, table().key()); }

    template <class Wanted> int32_t scan(Wanted wanted, int32_t from) const {
        for (int32_t i = from; i < size_; ++i) {
            if (Keys::matches((*this)[i], wanted)) {
                return i;
            }
        }
        return -1;
    }

    template <class Wanted> KEL_NEVER_INLINE int32_t searchLong(Wanted wanted) const {
        IdentityTable::Entry* entry = nullptr;
        int32_t from = 0;
        if (hasTable() && recordAll()) {
            entry = table().find(Keys::keyOf(wanted, table().key()));
            from = entry == nullptr ? size_ : table().leastIndexOf(*entry);
        }
        const int32_t index = scan(wanted, from);
        // Of several elements with one key, an earlier one may not have matched.
        if (entry != nullptr && index != -1 && entry->count == 1) {
            table().setLeastIndex(*entry, index);
        }
        recordSearch((index == -1 ? size_ : index) - from);
        return index;
    }

    /// Records the elements that the table lacks. \return false, without a table, without memory
    bool recordAll() const {
        IdentityTable& known = table();
        bool isComplete = known.reserve(size_);
        while (isComplete && known.size() < size_) {
            isComplete = known.append(keyOf((*this)[known.size()]));
        }
        if (!isComplete) {
            dropTable();
        }
        return isComplete;
    }

    KEL_NEVER_INLINE void closeInLong(const T* taken, int32_t index) {
        if (hasTable() && index < table().size()) {
            table().remove(keyOf(taken), index);
        }
        PointerBlock::closeInLong(index);
    }

    KEL_NEVER_INLINE void swapRecorded(int32_t a, int32_t b) {
        exchange(exchange((*this)[a], b), a);
        for (const int32_t index : {a, b}) {
            correctIndex(index);
        }
    }

    /// Records where an element is, if it is the only one with its key.
    void correctIndex(int32_t index) {
        if (hasTable() && index < table().size()) {
            IdentityTable::Entry* entry = table().find(keyOf((*this)[index]));
            if (entry->count == 1) {
                table().setLeastIndex(*entry, index);
            }
        }
    }

    KEL_NEVER_INLINE void recordExchange(const T* element, int32_t index) {
        if (index < table().size() &&
            !table().replace(keyOf((*this)[index]), keyOf(element), index)) {
            dropTable();
        }
    }
};

} // namespace kel
