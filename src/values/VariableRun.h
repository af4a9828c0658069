/// \file
/// VariableRun: a sorted array of variables.
#pragma once

#include "values/VariableName.h"

#include <algorithm>
#include <type_traits>

class KEL_Impl;

namespace kel {

/// One variable of a struct. Whoever keeps it frees its name and holds one reference to its value,
/// unless that is null.
struct Variable {
    VariableName name;
    KEL_Impl* value;
};

static_assert(std::is_trivially_copyable_v<Variable>);
static_assert(sizeof(Variable) == 16 + sizeof(void*));

/// A sorted array with room for a number of variables. It owns the room, and the table around it
/// owns the variables. Copying copies the handle.
class VariableRun {
public:
    /// The largest number of variables in one array.
    static constexpr uint32_t limit = 128;

    uint32_t count() const { return count_; }
    uint32_t capacity() const { return capacity_; }
    bool isFull() const { return count_ == capacity_; }

    Variable& operator[](uint32_t index) { return variables_[index]; }
    Variable* begin() const { return variables_; }
    Variable* end() const { return variables_ + count_; }
    Variable& back() const { return variables_[count_ - 1]; }

    /// Up to this many variables, comparing all of them is faster than dividing them.
    static constexpr uint32_t few = 16;

    /// Returns the index of the variable with this short name, or the count. Always compares all of
    /// them: a processor mispredicts where a search ends, and that costs more than the comparisons.
    uint32_t findAmongFew(const NameKey& key) const {
        uint32_t found = count_;
        for (uint32_t index = 0; index < count_; ++index) {
            found = variables_[index].name.hasImageOf(key) ? index : found;
        }
        return found;
    }

    /// Returns the index of the first variable that is not before the key. Divides without
    /// branches among short names, because half of them would be mispredicted.
    uint32_t find(const NameKey& key) const {
        uint32_t index = 0;
        for (uint32_t left = count_; left > 0;) {
            const uint32_t half = (left + 1) / 2;
            index += half * static_cast<uint32_t>(variables_[index + half - 1].name.isBefore(key));
            left -= half;
        }
        return index;
    }

    /// Makes room for this many variables in total, at least as many as there are.
    /// \throws JOutOfMemoryException "Out of memory!"
    void setCapacity(uint32_t capacity) {
        Variable* moved = Allocator<Variable>().allocate(capacity);
        std::copy(begin(), end(), moved);
        freeRoom();
        variables_ = moved;
        capacity_ = static_cast<uint16_t>(capacity);
    }

    /// Frees the room.
    void freeRoom() {
        if (variables_ != nullptr) {
            Allocator<Variable>().deallocate(variables_, capacity_);
            variables_ = nullptr;
            capacity_ = 0;
        }
    }

    /// Inserts a variable before the one at index. The array must not be full.
    void insert(uint32_t index, const Variable& variable) {
        std::copy_backward(begin() + index, end(), end() + 1);
        variables_[index] = variable;
        ++count_;
    }

    /// Takes the variable at index out.
    Variable take(uint32_t index) {
        const Variable taken = variables_[index];
        std::copy(begin() + index + 1, end(), begin() + index);
        --count_;
        return taken;
    }

    /// Moves the variables from index on to the end of another array, which has room for them.
    void moveTail(uint32_t index, VariableRun& other) {
        std::copy(begin() + index, end(), other.end());
        other.setCount(other.count_ + count_ - index);
        setCount(index);
    }

    /// Sets the number of variables, which the caller has put in place.
    void setCount(std::size_t count) { count_ = static_cast<uint16_t>(count); }

private:
    Variable* variables_ = nullptr;
    uint16_t count_ = 0;
    uint16_t capacity_ = 0;
};

} // namespace kel
