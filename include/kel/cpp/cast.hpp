/// \file
/// cast: from a value to the class of its kind, in about a nanosecond.
#pragma once

#include <kel/cpp/ref.hpp>

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

/// The place of a public class in the objects of one kind. The library has one class for each kind,
/// so the distance is the same in all of them. dynamic_cast would search the many bases of that
/// class each time, which takes about as long as ten calls.
template <class T> struct spot {
    explicit spot(KELKind kind) {
        const ref<KEL> sample = make(kind);
        T* part = dynamic_cast<T*>(sample.get());
        if (part == nullptr) {
            throw error("The library is older than this header, which needs version 1.1.");
        }
        const KEL& object = *sample;
        type = &typeid(object);
        distance =
            reinterpret_cast<const char*>(part) - reinterpret_cast<const char*>(sample.get());
    }

    const std::type_info* type;
    std::ptrdiff_t distance;
};

/// Returns the class in a value of exactly this kind, made by the library. Returns null for any
/// other value.
template <class T, KELKind kind> T* cast_from(KEL* object) {
    static const spot<T> known(kind);
    return &typeid(*object) == known.type
               ? reinterpret_cast<T*>(reinterpret_cast<char*>(object) + known.distance)
               : nullptr;
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
template <class T, KELKind kind> T* cast(KEL* object) {
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
