/// \file
/// MetaKelDescriptor: a description of the variables of a struct.
#pragma once

#include <kel/MetaKelVarDescriptor.h>

/// Declares no operation of its own. A struct descriptor is a struct that holds a
/// MetaKelVarDescriptor under the name of each described variable.
class MetaKelDescriptorInterface_V1 : public virtual KEL_Struct {
protected:
    ~MetaKelDescriptorInterface_V1() = default;
};

/// A description of a struct. Kind 51. Every call that changes its variables notifies the observers
/// once, setVar and changes in place (setInt, setVarValue, ...) included.
class MetaKelDescriptor : public virtual KEL_Struct, public virtual MetaKelDescriptorInterface_V1 {
protected:
    ~MetaKelDescriptor() = default;
};

/// Returns a new descriptor that describes no variables, with count 1, owned by the caller. Returns
/// null when out of memory.
KEL_API MetaKelDescriptor* KEL_CALL CreateMetaKelDescriptor();
