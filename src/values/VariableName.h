/// \file
/// VariableName: the name of a struct's variable.
#pragma once

#include "runtime/Storage.h"

#include <string>

namespace kel {

/// The name of a variable as its struct keeps it.
using VariableName = std::basic_string<char, std::char_traits<char>, Allocator<char>>;

/// Returns whether the name is null or empty. No variable has such a name, so operations ignore it
/// and lookups return null, false or 0.
inline bool isNoName(const char* name) {
    return name == nullptr || *name == '\0';
}

} // namespace kel
