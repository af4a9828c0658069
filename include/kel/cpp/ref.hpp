/// \file
/// ref: one reference to an object of the library, held as its public class.
#pragma once

#include <kel/cpp/error.hpp>

#include <type_traits>

namespace kel {
inline namespace v1 {
namespace detail {

// Add one reference, or give one back. Giving back never throws.
inline void add_reference(KEL* object) {
    object->addRef();
}
inline void add_reference(StringEnumeration* object) {
    object->addRef();
}
inline void give_back(KEL* object) noexcept {
    object->release();
}
inline void give_back(StringEnumeration* object) noexcept {
    object->release();
}
inline void give_back(KELInputStream* object) noexcept {
    DeleteKELInputStream(object);
}
inline void give_back(KELOutputStream* object) noexcept {
    try {
        DeleteKELOutputStream(object); // the stream is released even if its last bytes are lost
    } catch (KELException* failure) {
        DeleteKELException(failure);
    } catch (...) { // kel::save reports these failures, which come from the same bytes
    }
}

} // namespace detail

/// Owns one reference to an object, or none. It is one pointer, and moving it is free. References
/// to values can be copied.
///
/// Make one with adopt, for a pointer that you own already (from a Create function, copy, read or a
/// struct's getVar), or with share, for a borrowed one.
template <class T> class ref {
public:
    ref() noexcept = default;
    /// Holds nothing.
    ref(std::nullptr_t) noexcept {}
    /// Holds another reference to the same object, or takes over that of a temporary one.
    ref(const ref& other) noexcept : object_(other.object_) { retain(); }
    ref(ref&& other) noexcept : object_(other.detach()) {}
    ref& operator=(ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ref() {
        if (object_ != nullptr) {
            detail::give_back(object_);
        }
    }

    /// Takes over the caller's reference.
    static ref adopting(T* object) noexcept { return ref(object); }

    /// Return the object, borrowed. The operators require one.
    T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    /// Returns true if it holds an object.
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Passes the reference to the caller and becomes empty.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

    /// Returns another reference to the same object as another class. Returns an empty one if the
    /// object is not of that class.
    template <class U> ref<U> as() const {
        ref<U> other = ref<U>::adopting(dynamic_cast<U*>(object_));
        other.retain();
        return other;
    }

private:
    template <class U> friend class ref;

    explicit ref(T* object) noexcept : object_(object) {}
    void retain() const noexcept {
        if (object_ != nullptr) {
            detail::add_reference(object_);
        }
    }

    T* object_ = nullptr;
};

/// Returns whether both refer to the same object, or both to none.
template <class T, class U> bool operator==(const ref<T>& a, const ref<U>& b) noexcept {
    if constexpr (std::is_same_v<T, U>) {
        return a.get() == b.get();
    } else {
        return static_cast<const KEL*>(a.get()) == static_cast<const KEL*>(b.get());
    }
}
template <class T, class U> bool operator!=(const ref<T>& a, const ref<U>& b) noexcept {
    return !(a == b);
}

/// Takes over a reference that the caller owns. Null gives an empty ref.
template <class T> [[nodiscard]] ref<T> adopt(T* object) noexcept {
    return ref<T>::adopting(object);
}

/// Takes over the result of a factory, which the caller owned.
/// \throws std::bad_alloc for null, which factories return when out of memory
template <class T> [[nodiscard]] ref<T> adopt_made(T* object) {
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return ref<T>::adopting(object);
}

/// Adds a reference to an object that somebody else holds. Null gives an empty ref.
template <class T> [[nodiscard]] ref<T> share(T* object) noexcept {
    if (object != nullptr) {
        detail::add_reference(object);
    }
    return ref<T>::adopting(object);
}

} // namespace v1
} // namespace kel
