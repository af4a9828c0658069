/// \file
/// ValueList: the elements of an array.
#pragma once

#include "values/KEL_Impl.h"

namespace kel {

/// An ordered list of counted values, none of them null. Indices are not checked: callers know them
/// to be valid. Searching compares identities. A failed operation leaves the list unchanged.
///
/// Lists are parts of values, so the list itself is small. All elements lie in one block, which
/// grows by half at least, so appending many elements one by one takes linear time.
class ValueList {
public:
    ValueList() = default;
    ValueList(const ValueList&) = delete;
    ValueList& operator=(const ValueList&) = delete;
    ~ValueList() { giveBack(); }

    int32_t size() const { return size_; }

    /// Returns the element at index, borrowed.
    KEL_Impl* operator[](int32_t index) const { return elements_[index]; }

    /// Returns the first index whose element has the identity of value; -1 if none, and for null.
    int32_t indexOf(const KEL_Impl* value) const;

    /// Makes room for this many more elements; storing them then needs no memory.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoom(int32_t more) {
        if (more > room_ - size_) {
            grow(more);
        }
    }

    /// Appends an element and takes over the caller's reference.
    /// \throws JOutOfMemoryException "Out of memory!"; the reference is then still the caller's
    void adopt(KEL_Impl* value) {
        makeRoom(1);
        elements_[size_++] = value;
    }

    /// Appends an element, shared with the caller.
    /// \throws JOutOfMemoryException "Out of memory!"
    void append(KEL_Impl* value) {
        adopt(value);
        static_cast<JObject*>(value)->addRef(); // without a virtual call
    }

    /// Inserts an element, shared with the caller, at an index from 0 to size().
    /// \throws JOutOfMemoryException "Out of memory!"
    void insert(KEL_Impl* value, int32_t index);

    /// Replaces an element by one that is shared with the caller, and then releases the old one.
    void set(KEL_Impl* value, int32_t index);

    /// Exchanges two elements.
    void swap(int32_t a, int32_t b) { std::swap(elements_[a], elements_[b]); }

    /// Closes the gap, and then releases the removed element.
    void remove(int32_t index);

    /// Removes every element, the last one first, and keeps the room. Elements that are added or
    /// removed while others are released do no harm: afterwards the list is empty.
    void clear();

    /// Removes every element and the room.
    void giveBack();

    /// Exchanges all elements with another list.
    void swap(ValueList& other) noexcept;

private:
    void grow(int32_t more);

    KEL_Impl** elements_ = nullptr;
    int32_t size_ = 0;
    int32_t room_ = 0;
};

} // namespace kel
