/// \file
/// The real numbers of references, for the tests of what holds a value.
#pragma once

#include <kel/kel.hpp>

/// Returns the real number of references, which the values' own getRefCount hides.
inline int references(KEL* value) {
    value->addRef();
    return value->release();
}
inline int references(const kel::value& value) {
    return references(value.raw());
}
