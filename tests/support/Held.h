/// \file
/// Held: one reference, released at the end of the scope.
#pragma once

#include <cstdint>
#include <utility>

namespace kel::test {

/// Owns one reference to anything counted: a value, a string, an exception, a list of names.
template <class T> class Held {
public:
    explicit Held(T* target = nullptr) : target_(target) {}
    Held(Held&& other) noexcept : target_(other.detach()) {}
    Held& operator=(Held&& other) noexcept {
        std::swap(target_, other.target_);
        return *this;
    }
    ~Held() { clear(); }

    T* get() const { return target_; }
    T* operator->() const { return target_; }
    T& operator*() const { return *target_; }
    explicit operator bool() const { return target_ != nullptr; }

    /// Releases the reference before the scope ends.
    void clear() {
        if (T* old = detach()) {
            old->release();
        }
    }

    /// Hands the reference to the caller.
    T* detach() { return std::exchange(target_, nullptr); }

private:
    T* target_;
};

/// Makes a T and returns it held.
template <class T, class... Arguments> Held<T> make(Arguments&&... arguments) {
    return Held<T>(new T(std::forward<Arguments>(arguments)...));
}

/// Returns the real number of references, which the values' own getRefCount hides.
template <class T> int32_t referencesOf(T& counted) {
    counted.addRef();
    return counted.release();
}

} // namespace kel::test
