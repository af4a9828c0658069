/// \file
/// What a strict check compares of variables and their descriptors.
#pragma once

#include "document/Values.h"

#include <string>

namespace kel::tool {

/// Returns why the kind of a value does not fit the described kind, or nothing. A number fits if
/// it can be converted without loss. If the described kind is missing or unknown, every kind fits.
std::string mistakeInKind(const MetaKelVarDescriptor& rules, const KEL& value);

/// Words for names that a descriptor does not describe, with the similar ones that it does. Only a
/// limited number of names are compared, so that many unknown names take linear time.
class UnknownNames {
public:
    /// Returns what is wrong with the name. \param known the struct of the described names
    std::string wordsFor(const char* name, const KELInterface_Struct_V2& known);

private:
    size_t comparisons_ = 0;
};

} // namespace kel::tool
