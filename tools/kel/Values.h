/// \file
/// Value: one owned reference to a KEL value.
#pragma once

#include <kel/kel.h>
#include <memory>
#include <new>

namespace kel::tool {

/// Gives a value's reference back to the library.
struct ValueDeleter {
    void operator()(KEL* value) const { DeleteKEL(value); }
};

/// Owns one reference to a value, or none.
using Value = std::unique_ptr<KEL, ValueDeleter>;

/// Takes over what a factory of the library returned.
/// \throws std::bad_alloc for null, which factories answer when memory is out
inline Value made(KEL* value) {
    if (value == nullptr) {
        throw std::bad_alloc();
    }
    return Value(value);
}

/// A reference of one's own to a value that somebody else holds; null for null.
inline Value share(KEL* value) {
    if (value != nullptr) {
        value->addRef();
    }
    return Value(value);
}

/// Gives a list of names back to the library.
struct NamesDeleter {
    void operator()(StringEnumeration* names) const { DeleteStringEnumeration(names); }
};

/// Owns a list of names.
using Names = std::unique_ptr<StringEnumeration, NamesDeleter>;

/// True for the kinds that hold other values.
inline bool isContainer(const KEL& value) {
    const int32_t kind = value.getType();
    return kind == KELKind_Array || kind == KELKind_Struct || kind == KELKind_Manager;
}

/// The struct's variable, borrowed; null when it holds no value. The name has to exist.
inline KEL* memberOf(const KEL_Struct& structure, const char* name) {
    return structure.getVar(name);
}

} // namespace kel::tool
