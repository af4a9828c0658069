/// \file
/// The description of a variable that the library did not make.
#pragma once

#include "ForeignContainers.h"

namespace host {

/// Rules that allow everything.
class ForeignRules : public ForeignStructOf<MetaKelVarDescriptor, KELKind_MetaKelVarDescriptor> {
public:
    using ForeignStructOf::ForeignStructOf;

    bool isRanged() const override { return true; }
    bool isEnumerated() const override { return true; }
    bool isValid(const KEL*) const override { return true; }
    void setRange(KEL*, KEL*) override {}
    void setRange(double, double) override {}
    void setRange(int32_t, int32_t) override {}
    KEL* getMin() const override { return nullptr; }
    KEL* getMax() const override { return nullptr; }
    bool inRange(double) const override { return true; }
    bool inRange(int32_t) const override { return true; }
    bool inRange(const KEL*) const override { return true; }
    KEL_Array* getEnum() const override { return nullptr; }
    bool inEnum(bool) const override { return true; }
    bool inEnum(const char*) const override { return true; }
    bool inEnum(double) const override { return true; }
    bool inEnum(int32_t) const override { return true; }
    bool inEnum(const KEL*) const override { return true; }
    void addEnumValue(bool) override {}
    void addEnumValue(const char*) override {}
    void addEnumValue(double) override {}
    void addEnumValue(int32_t) override {}
    void addEnumValue(KEL*) override {}
    void removeEnumValue(bool) override {}
    void removeEnumValue(const char*) override {}
    void removeEnumValue(double) override {}
    void removeEnumValue(int32_t) override {}
    void removeEnumValue(const KEL*) override {}
    bool hasDefault() const override { return true; }
    KEL* getDefault() const override { return nullptr; }
    void setDefault(bool) override {}
    void setDefault(const char*) override {}
    void setDefault(double) override {}
    void setDefault(int32_t) override {}
    void setDefault(KEL*) override {}
    void removeDefault() override {}
    bool hasPreadorn() const override { return true; }
    const char* getPreadorn() const override { return nullptr; }
    void setPreadorn(const char*) override {}
    void setPreadorn(KEL*) override {}
    void removePreadorn() override {}
    bool hasPostadorn() const override { return true; }
    const char* getPostadorn() const override { return nullptr; }
    void setPostadorn(const char*) override {}
    void setPostadorn(KEL*) override {}
    void removePostadorn() override {}
    bool hasWrapped() const override { return true; }
    bool getWrapped() const override { return true; }
    void setWrapped(bool) override {}
    void setWrapped(const KEL*) override {}
    void removeWrapped() override {}
    bool hasInterpolated() const override { return true; }
    bool getInterpolated() const override { return true; }
    void setInterpolated(bool) override {}
    void setInterpolated(const KEL*) override {}
    void removeInterpolated() override {}
    bool hasStepsize() const override { return true; }
    double getStepsize() const override { return 1.0; }
    void setStepsize(double) override {}
    void setStepsize(int32_t) override {}
    void setStepsize(const KEL*) override {}
    void removeStepsize() override {}
    int32_t getVariableType() const override { return 1; }
    void setType(int32_t) override {}
    void addEnumerationList(KEL*) override {}
    void removeEnumerationList() override {}
    void rangeFromEnumeration() override {}
    void enumerationFromRange(KEL*) override {}
    KEL_Struct* getStruct() const override { return nullptr; }
};

} // namespace host
