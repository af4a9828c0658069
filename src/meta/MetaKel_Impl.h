/// \file
/// MetaKel_Impl: a checked struct value.
#pragma once

#include "meta/MetaKelDescriptor_Impl.h"

#include <kel/MetaKel.h>

/// Implements MetaKel over an inner struct that holds the variables and, under "@desc", the
/// descriptor.
class MetaKel_Impl final : public kel::StructForwarder<MetaKel> {
public:
    MetaKel_Impl() : StructForwarder(identity()) {}

    /// Makes the same value with a given identity.
    explicit MetaKel_Impl(const JHashCode& identity) : MetaKel_Impl(identity, identity) {}

    /// Makes the same value with an inner struct of another identity.
    MetaKel_Impl(const JHashCode& identity, const JHashCode& innerIdentity)
        : JObject(identity), StructForwarder(innerIdentity) {}

    int32_t getType() const override { return KELKind_MetaKel; }
    KEL_Impl* copyWithoutChildren() const override { return new MetaKel_Impl(); }
    /// Returns null: a cleared variable is cleared in the copy too, because 0 can be invalid there
    /// for an Int.
    JPointer<KEL_Impl> copyOfNullVariable() const override { return {}; }

    // MetaKelInterface_V1
    void clearVar(const char* name) override;
    void setDescriptor(MetaKelDescriptor* descriptor) override;
    void replaceDescriptor(MetaKelDescriptor* descriptor) override;
    MetaKelDescriptor* getDescriptor() const override { return descriptor(); }
    void removeDescriptor() override;
    void createVar(const char* name, KEL* value, MetaKelVarDescriptor* rules) override;

    // MetaKel
    KEL* getVar(const char* name, bool storeDefault) override;
    void createVarWithType(const char* name, KEL* value) override;
    void createVarWithDefault(const char* name, KEL* value, KEL* defaultValue) override;
    void createVarWithEnum(const char* name, KEL* value, KEL_Array* allowed) override;

    // KELInterface_Struct_V1, where a checked struct differs
    KEL* getVar(const char* name) override;
    KEL* getVar(const char* name) const override { return find(name); }
    void addVar(const char* name, KEL* value) override;
    void setVar(const char* name, KEL* value) override;
    void setVarValue(const char* name, KEL* value) override;

private:
    /// Returns the descriptor in use, borrowed; null when there is none.
    MetaKelDescriptor_Impl* descriptor() const;

    /// Returns the descriptor of a variable, borrowed; null when it is not described.
    MetaKelVarDescriptor_Impl* descriptorOf(const char* name) const;

    /// Returns whether the value is valid for the variable, as far as the variable is described.
    bool accepts(const char* name, const KEL* value) const;

    using PreparedVariable = KEL_Struct_Impl::PreparedVariable;

    /// Prepares the variable that the checked add stores under a name: the value, or null (the
    /// default) where rules refuse it. Returns an empty variable where nothing is to be stored.
    PreparedVariable prepareChecked(const char* name, KEL* value,
                                    const MetaKelVarDescriptor_Impl* rules) const;

    /// Returns the variable's value or its default, borrowed. Throws as getVar does.
    KEL* find(const char* name) const;
};
