/// \file
/// Storage for the parts of values, from platform::allocate. If there is none, the failure is always
/// the same JOutOfMemoryException.
#pragma once

#include "platform/Memory.h"

#include <cstdint>
#include <functional>
#include <kel/JException.h>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kel {

/// Throws the failure of every operation of a value that finds no memory for its result.
[[noreturn]] inline void throwOutOfMemory() {
    throw JOutOfMemoryException("Out of memory!");
}

/// size bytes, not initialised; never null.
/// \throws JOutOfMemoryException "Out of memory!"
inline void* allocateOrThrow(std::size_t size) {
    void* storage = platform::allocate(size);
    if (storage == nullptr) {
        throwOutOfMemory();
    }
    return storage;
}

/// Base of classes whose objects `new` makes in this storage.
struct Stored {
    static void* operator new(std::size_t size) { return allocateOrThrow(size); }
    static void operator delete(void* storage) noexcept { platform::deallocate(storage); }
};

/// A new T. For classes that hosts see, which cannot have an operator new of the library's.
/// \throws JOutOfMemoryException, also where the general `new` finds no memory
template <class T, class... Arguments> T* makeObject(Arguments&&... arguments) {
    try {
        return new T(std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
        throwOutOfMemory();
    }
}

/// Lets the containers of the standard library use this storage.
template <class T> struct Allocator {
    using value_type = T;

    Allocator() = default;
    template <class Other> Allocator(const Allocator<Other>&) {}

    T* allocate(std::size_t count) {
        if (count > SIZE_MAX / sizeof(T)) {
            throwOutOfMemory();
        }
        return static_cast<T*>(allocateOrThrow(count * sizeof(T)));
    }
    void deallocate(T* storage, std::size_t) noexcept { platform::deallocate(storage); }

    bool operator==(const Allocator&) const = default;
};

template <class T> using Vector = std::vector<T, Allocator<T>>;

template <class Key, class T>
using HashMap = std::unordered_map<Key, T, std::hash<Key>, std::equal_to<Key>,
                                   Allocator<std::pair<const Key, T>>>;

} // namespace kel
