/// \file
/// StructHolder: a value that is built on a struct.
#pragma once

#include "values/KEL_Struct_Impl.h"

namespace kel {

/// Gives writers and readers access to the struct inside a checked struct or a descriptor.
class StructHolder {
public:
    /// Returns the inner struct, borrowed.
    virtual KEL_Struct_Impl& inner() const = 0;

protected:
    ~StructHolder() = default;
};

} // namespace kel
