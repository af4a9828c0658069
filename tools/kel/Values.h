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
    switch (value.getType()) {
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        return true;
    default:
        return false;
    }
}

/// The name under which a checked struct holds its descriptor.
constexpr const char* descriptorName = "@desc";

/// True for the kinds that only text has a form for: managers, index lists, checked structs and
/// descriptors.
inline bool isTextOnly(const KEL& value) {
    return isContainer(value) && value.getType() != KELKind_Array &&
           value.getType() != KELKind_Struct;
}

/// The struct's variable, borrowed; null when it holds no value. The name has to exist.
inline KEL* memberOf(const KEL_Struct& structure, const char* name) {
    return structure.getVar(name);
}

} // namespace kel::tool
