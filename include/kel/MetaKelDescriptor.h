/// \file
/// MetaKelDescriptor: what the variables of a struct may hold.
#pragma once

#include <kel/MetaKelVarDescriptor.h>

/// Declares no operation of its own: a struct descriptor is a struct that holds a
/// MetaKelVarDescriptor under the name of each described variable.
class MetaKelDescriptorInterface_V1 {
protected:
    ~MetaKelDescriptorInterface_V1() = default;
};

/// A description of a struct. Kind 51. Observers are told once of every call that changes its
/// variables, setVar and changes in place (setInt, setVarValue, ...) included.
class MetaKelDescriptor : public virtual KEL_Struct, public virtual MetaKelDescriptorInterface_V1 {
protected:
    ~MetaKelDescriptor() = default;
};

/// A new descriptor of no variables, count 1, owned by the caller; null when out of memory.
KEL_API MetaKelDescriptor* KEL_CALL CreateMetaKelDescriptor();
