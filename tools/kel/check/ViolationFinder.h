/// \file
/// ViolationFinder: what is wrong with a value, by the descriptors of its document.
#pragma once

#include "check/AllowedValues.h"

#include <functional>
#include <string>

namespace kel::tool {

/// Returns the values that a variable can hold, in words, such as "0 to 10".
std::string wordsForAllowed(MetaKelVarDescriptor& rules);

/// Compares single values with the descriptors that apply to them. Who walks over the document asks
/// for every place and for every variable descriptor. The values must stay alive and unchanged.
class ViolationFinder {
public:
    /// Takes one violation: words on one line, without the path of the place.
    using Report = std::function<void(const std::string&)>;

    /// Reports a variable of a checked struct that its descriptor finds invalid, with what is
    /// allowed, and an entry of a struct descriptor that is not a variable descriptor.
    /// \param container the value around the place; null for a root value
    /// \param name the name in a struct, null elsewhere
    void checkPlace(const KEL* container, const char* name, KEL& value, const Report& report);

    /// Reports a value that the descriptor does not allow, with what is allowed.
    void checkValue(MetaKelVarDescriptor& rules, KEL& value, const Report& report);

    /// Reports why no variable could keep to the descriptor, or how it contradicts itself.
    void checkRules(MetaKelVarDescriptor& rules, const Report& report);

private:
    void checkVariable(const MetaKel& owner, const char* name, KEL& value, const Report& report);

    AllowedValues allowed_;
};

} // namespace kel::tool
