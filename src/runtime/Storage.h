/// \file
/// Storage for the parts of values, from platform::allocate. Every failed allocation throws the
/// same JOutOfMemoryException.
#pragma once

#include "platform/Memory.h"

#include <cstdint>
#include <functional>
#include <kel/JException.h>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kel {

/// Throws the exception that every operation of a value throws when it finds no memory.
[[noreturn]] inline void throwOutOfMemory() {
    throw JOutOfMemoryException("Out of memory!");
}

/// Throws the failure of every text that finds no memory for its characters. Appending to a string
/// fails with the constructor's message too, because it is the same failure to the host.
[[noreturn]] inline void throwNoMemoryForText() {
    throw JOutOfMemoryException("Cannot allocate memory in JString constructor.");
}

/// Allocates size bytes, uninitialised. Never returns null.
/// \throws JOutOfMemoryException "Out of memory!"
inline void* allocateOrThrow(std::size_t size) {
    void* storage = platform::allocate(size);
    if (storage == nullptr) {
        throwOutOfMemory();
    }
    return storage;
}

/// Allocates size bytes like platform::allocateSized, but never returns null.
/// \throws JOutOfMemoryException "Out of memory!"
inline void* allocateSizedOrThrow(std::size_t size) {
    void* storage = platform::allocateSized(size);
    if (storage == nullptr) {
        throwOutOfMemory();
    }
    return storage;
}

/// Owns storage from allocate or allocateOrThrow. T, or its elements, need no destructor.
struct Deallocate {
    void operator()(void* storage) const noexcept { platform::deallocate(storage); }
};
template <class T> using Storage = std::unique_ptr<T, Deallocate>;

/// Base of classes whose objects `new` allocates in this storage.
struct Stored {
    static void* operator new(std::size_t size) { return allocateSizedOrThrow(size); }
    static void operator delete(void* storage, std::size_t size) noexcept {
        platform::deallocateSized(storage, size);
    }
};

/// Makes a new T. It is meant for classes that hosts see, which cannot have the library's operator
/// new.
/// \throws JOutOfMemoryException, also when the general `new` finds no memory
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
        return static_cast<T*>(allocateSizedOrThrow(count * sizeof(T)));
    }
    void deallocate(T* storage, std::size_t count) noexcept {
        platform::deallocateSized(storage, count * sizeof(T));
    }

    bool operator==(const Allocator&) const = default;
};

template <class T> using Vector = std::vector<T, Allocator<T>>;

template <class Key, class T>
using HashMap = std::unordered_map<Key, T, std::hash<Key>, std::equal_to<Key>,
                                   Allocator<std::pair<const Key, T>>>;

} // namespace kel
