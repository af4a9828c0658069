/// \file
/// Value: one owned reference to a KEL value.
#pragma once

#include "failures/Failure.h"

#include <kel/kel.h>
#include <memory>
#include <new>
#include <string>

namespace kel::tool {

/// Gives a value's reference back to the library.
struct ValueDeleter {
    void operator()(KEL* value) const { DeleteKEL(value); }
};

/// Owns one reference to a value, or none.
using Value = std::unique_ptr<KEL, ValueDeleter>;

/// Takes ownership of the result of one of the library's factories.
/// \throws std::bad_alloc for null, which factories return when out of memory
inline Value made(KEL* value) {
    if (value == nullptr) {
        throw std::bad_alloc();
    }
    return Value(value);
}

/// Returns a new reference to a value that somebody else holds, or null for null.
inline Value share(KEL* value) {
    if (value != nullptr) {
        value->addRef();
    }
    return Value(value);
}

/// Returns the facts about the value's kind.
/// \throws Failure malformed for a kind that a newer library knows and this tool does not
inline const KELKindFacts& kindOf(const KEL& value) {
    const int32_t code = value.getType();
    const KELKindFacts* facts = findKELKind(code);
    // not reached: the library is not newer than the tool
    if (facts == nullptr) {
        throw Failure{Trouble::malformed, "a value of the unknown kind " + std::to_string(code)};
    }
    return *facts;
}

/// Returns the value's identity, which is drawn now if the value has none yet.
inline JHashCode identityOf(const KEL& value) {
    JHashCode identity;
    return value.getHashCode(identity);
}

/// The name under which a checked struct holds its descriptor.
constexpr const char* descriptorName = "@desc";

/// Returns whether only text has a form for the value's kind: managers, index lists, checked
/// structs and descriptors.
inline bool isTextOnly(const KEL& value) {
    const KELKindFacts& facts = kindOf(value);
    return facts.hasTextForm && !facts.hasBinaryForm && !facts.hasJsonForm;
}

/// Returns the operations for walking over the struct's variables.
inline const KELInterface_Struct_V2& walkOver(const KEL_Struct& structure) {
    return dynamic_cast<const KELInterface_Struct_V2&>(structure);
}

/// Returns the struct's variable, borrowed, or null if it holds no value. The name must exist.
inline KEL* memberOf(const KEL_Struct& structure, const char* name) {
    return structure.getVar(name);
}

} // namespace kel::tool
