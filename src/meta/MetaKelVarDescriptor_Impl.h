/// \file
/// MetaKelVarDescriptor_Impl: a variable descriptor value.
#pragma once

#include "meta/StructForwarder.h"
#include "values/KEL_Array_Impl.h"

#include <kel/MetaKelVarDescriptor.h>

/// Implements MetaKelVarDescriptor over an inner struct that holds the properties.
class MetaKelVarDescriptor_Impl final : public kel::StructForwarder<MetaKelVarDescriptor> {
public:
    MetaKelVarDescriptor_Impl() : StructForwarder(identity()) {}

    /// Makes the same value with a given identity.
    explicit MetaKelVarDescriptor_Impl(const JHashCode& identity)
        : MetaKelVarDescriptor_Impl(identity, identity) {}

    /// Makes the same value with an inner struct of another identity.
    MetaKelVarDescriptor_Impl(const JHashCode& identity, const JHashCode& innerIdentity)
        : JObject(identity), StructForwarder(innerIdentity) {}

    int32_t getType() const override { return KELKind_MetaKelVarDescriptor; }
    KEL_Impl* copyWithoutChildren() const override { return new MetaKelVarDescriptor_Impl(); }

    // MetaKelVarDescriptorInterface_V1
    bool isRanged() const override { return containsVar("min") && containsVar("max"); }
    bool isEnumerated() const override { return containsVar("enum"); }
    bool isValid(const KEL* value) const override;
    void setRange(KEL* min, KEL* max) override;
    void setRange(double min, double max) override;
    void setRange(int32_t min, int32_t max) override;
    KEL* getMin() const override;
    KEL* getMax() const override;
    bool inRange(double value) const override;
    bool inRange(int32_t value) const override;
    bool inRange(const KEL* value) const override;
    KEL_Array* getEnum() const override;
    bool inEnum(bool value) const override;
    bool inEnum(const char* text) const override;
    bool inEnum(double value) const override;
    bool inEnum(int32_t value) const override;
    bool inEnum(const KEL* value) const override;
    void addEnumValue(bool value) override;
    void addEnumValue(const char* text) override;
    void addEnumValue(double value) override;
    void addEnumValue(int32_t value) override;
    void addEnumValue(KEL* value) override;
    void removeEnumValue(bool value) override;
    void removeEnumValue(const char* text) override;
    void removeEnumValue(double value) override;
    void removeEnumValue(int32_t value) override;
    void removeEnumValue(const KEL* value) override;
    bool hasDefault() const override { return containsVar("default"); }
    KEL* getDefault() const override { return property("default"); }
    void setDefault(bool value) override;
    void setDefault(const char* text) override;
    void setDefault(double value) override;
    void setDefault(int32_t value) override;
    void setDefault(KEL* value) override;
    void removeDefault() override { removeProperty("default"); }
    bool hasPreadorn() const override { return containsVar("preadorn"); }
    const char* getPreadorn() const override { return textOf("preadorn"); }
    void setPreadorn(const char* text) override;
    void setPreadorn(KEL* value) override { replaceText("preadorn", value); }
    void removePreadorn() override { removeProperty("preadorn"); }
    bool hasPostadorn() const override { return containsVar("postadorn"); }
    const char* getPostadorn() const override { return textOf("postadorn"); }
    void setPostadorn(const char* text) override;
    void setPostadorn(KEL* value) override { replaceText("postadorn", value); }
    void removePostadorn() override { removeProperty("postadorn"); }
    bool hasWrapped() const override { return containsVar("wrapped"); }
    bool getWrapped() const override;
    void setWrapped(bool value) override;
    void setWrapped(const KEL* value) override;
    void removeWrapped() override { removeProperty("wrapped"); }
    bool hasInterpolated() const override { return containsVar("interpolated"); }
    bool getInterpolated() const override;
    void setInterpolated(bool value) override;
    void setInterpolated(const KEL* value) override;
    void removeInterpolated() override { removeProperty("interpolated"); }
    bool hasStepsize() const override { return containsVar("stepsize"); }
    double getStepsize() const override;
    void setStepsize(double value) override;
    void setStepsize(int32_t value) override { setStepsize(static_cast<double>(value)); }
    void setStepsize(const KEL* value) override;
    void removeStepsize() override { removeProperty("stepsize"); }
    int32_t getVariableType() const override;
    void setType(int32_t kind) override;
    void addEnumerationList(KEL* value) override;
    void removeEnumerationList() override;
    void rangeFromEnumeration() override;
    void enumerationFromRange(KEL* extra) override;
    KEL_Struct* getStruct() const override { return &inner(); }

private:
    /// Returns the value of a property, borrowed; null when absent.
    KEL_Impl* property(const char* name) const;

    /// Adds or replaces a property, with one notification.
    void putProperty(const char* name, KEL_Impl* value);

    /// Replaces an existing property, with one notification.
    void replaceProperty(const char* name, KEL_Impl* value);
    void replaceText(const char* name, const KEL* value);

    void removeProperty(const char* name);
    const char* textOf(const char* name) const;
    void requireRange() const;

    /// Returns the allowed values; null if there are none, or if they are not a list.
    KEL_Array_Impl* listOfAllowed() const;

    /// Returns the allowed values. Throws if there are none, or if they are not a list.
    KEL_Array_Impl& allowedValues() const;
};
