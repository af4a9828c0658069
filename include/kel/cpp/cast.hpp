/// \file
/// cast: from a value to the class of its kind, in about a nanosecond.
#pragma once

#include <kel/cpp/ref.hpp>

#include <atomic>
#include <cstddef>
#include <typeinfo>

namespace kel {
inline namespace v1 {
namespace detail {

/// Makes an empty value of a kind, with an identity or, for all zero, a fresh one.
inline ref<KEL> make(KELKind kind, const JHashCode& identity = {}) {
    return call([&] {
        const ref<KEL_Manager> manager = adopt_made(CreateKELManager());
        return adopt(identity.isZero() ? manager->createKel(kind)
                                       : manager->createKel(kind, identity));
    });
}

/// The type of the objects of one kind, and how far a public class is from KEL in them.
struct sample {
    /// \param part_of returns the public class in an object, or null
    KEL_SELDOM sample(KELKind kind, void* (*part_of)(KEL*)) {
        const ref<KEL> made = make(kind);
        const void* part = part_of(made.get());
        if (part == nullptr) {
            throw error("The library is older than this header, which needs version 1.1.");
        }
        const KEL& object = *made;
        type = &typeid(object);
        distance = static_cast<const char*>(part) - reinterpret_cast<const char*>(made.get());
    }

    const std::type_info* type;
    std::ptrdiff_t distance;
};

/// The place of a public class in the objects of one kind. The library has one class for each kind,
/// so the distance is the same in all of them. dynamic_cast would search the many bases of that
/// class each time, which takes about as long as ten calls.
///
/// Type and distance are learned from a sample at first use. As constants they need no guard, which
/// a local static variable would test at each use. Two threads learn the same.
template <class T, KELKind kind> class spot {
public:
    static bool is_in(KEL* object) {
        const std::type_info* known = type_.load(std::memory_order_acquire);
        return &typeid(*object) == known || (known == nullptr && in_first(object) != nullptr);
    }
    static T* in(KEL* object) {
        const std::type_info* known = type_.load(std::memory_order_acquire);
        return &typeid(*object) == known ? at_distance(object)
               : known != nullptr        ? nullptr
                                         : in_first(object);
    }

private:
    static T* at_distance(KEL* object) {
        return reinterpret_cast<T*>(reinterpret_cast<char*>(object) +
                                    distance_.load(std::memory_order_relaxed));
    }
    KEL_SELDOM static T* in_first(KEL* object) {
        const sample one(kind, [](KEL* made) -> void* { return dynamic_cast<T*>(made); });
        distance_.store(one.distance, std::memory_order_relaxed);
        type_.store(one.type, std::memory_order_release);
        return &typeid(*object) == one.type ? at_distance(object) : nullptr;
    }

    static inline std::atomic<const std::type_info*> type_{nullptr};
    static inline std::atomic<std::ptrdiff_t> distance_{0};
};

/// Returns the class in a value of exactly this kind, made by the library. Returns null for any
/// other value.
template <class T, KELKind kind> inline T* cast_from(KEL* object) {
    return spot<T, kind>::in(object);
}

/// Returns the value's struct operations. Returns null for null and for every
/// other kind.
template <class T> T* cast_to_struct(KEL* object) {
    if (object == nullptr) {
        return nullptr;
    }
    if (T* plain = cast_from<T, KELKind_Struct>(object)) {
        return plain; // nearly always
    }
    switch (object->getType()) {
    case KELKind_MetaKel:
        return cast_from<T, KELKind_MetaKel>(object);
    case KELKind_MetaKelDescriptor:
        return cast_from<T, KELKind_MetaKelDescriptor>(object);
    case KELKind_MetaKelVarDescriptor:
        return cast_from<T, KELKind_MetaKelVarDescriptor>(object);
    default:
        return nullptr;
    }
}

/// Returns the value as the class of its kind. Returns null for null and for another kind.
template <class T, KELKind kind> inline T* cast(KEL* object) {
    return object == nullptr ? nullptr : cast_from<T, kind>(object);
}

inline KEL_Array* array_of(KEL* object) {
    return cast<KEL_Array, KELKind_Array>(object);
}
inline KEL_Struct* struct_of(KEL* object) {
    return cast_to_struct<KEL_Struct>(object);
}
inline KELInterface_Struct_V2* walk_of(KEL* object) {
    return cast_to_struct<KELInterface_Struct_V2>(object);
}
inline KEL_Manager* manager_of(KEL* object) {
    return cast<KEL_Manager, KELKind_Manager>(object);
}
inline KEL_IndexList* list_of(KEL* object) {
    return cast<KEL_IndexList, KELKind_IndexList>(object);
}
inline MetaKel* checked_of(KEL* object) {
    return cast<MetaKel, KELKind_MetaKel>(object);
}

} // namespace detail
} // namespace v1
} // namespace kel
