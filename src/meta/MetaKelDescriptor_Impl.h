/// \file
/// MetaKelDescriptor_Impl: a struct descriptor value.
#pragma once

#include "meta/MetaKelVarDescriptor_Impl.h"

#include <kel/MetaKelDescriptor.h>

/// Implements MetaKelDescriptor over an inner struct.
class MetaKelDescriptor_Impl final : public kel::StructForwarder<MetaKelDescriptor> {
public:
    MetaKelDescriptor_Impl() : StructForwarder(identity()) {}

    /// Makes the same value with a given identity.
    explicit MetaKelDescriptor_Impl(const JHashCode& identity)
        : MetaKelDescriptor_Impl(identity, identity) {}

    /// Makes the same value with an inner struct of another identity.
    MetaKelDescriptor_Impl(const JHashCode& identity, const JHashCode& innerIdentity)
        : JObject(identity), StructForwarder(innerIdentity) {}

    int32_t getType() const override { return KELKind_MetaKelDescriptor; }
    KEL_Impl* copyWithoutChildren() const override { return new MetaKelDescriptor_Impl(); }

    /// Returns the descriptor of a variable, borrowed; null when it is not described.
    MetaKelVarDescriptor_Impl* find(const char* name) const {
        return containsVar(name) ? dynamic_cast<MetaKelVarDescriptor_Impl*>(inner().valueOf(name))
                                 : nullptr;
    }
};
