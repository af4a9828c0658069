/// \file
/// KEL_Boolean_Impl: a Boolean value.
#pragma once

#include "values/KEL_Impl.h"

#include <kel/KEL_Boolean.h>

/// Implements KEL_Boolean.
class KEL_Boolean_Impl final : public KEL_Impl, public KEL_Boolean {
public:
    explicit KEL_Boolean_Impl(bool value) : JObject(IdentityLater()), value_(value) {}

    /// Makes the same value with a given identity.
    KEL_Boolean_Impl(const JHashCode& identity, bool value) : JObject(identity), value_(value) {}

    int32_t getType() const override { return KELKind_Boolean; }

    // KELInterface_Boolean_V1
    bool getValue() const override { return value_; }
    void setValue(bool value) override;
    KEL_Boolean* setBoolean(bool value) override;
    KEL_Boolean* setInt(int32_t value) override;
    KEL_Boolean* setDouble(double value) override;
    KEL_Boolean* setString(const char* text) override;
    KEL_Boolean* setguid(const JHashCode& value) override;

    // KELInterface_Casting_V1
    bool toBoolean() const override { return value_; }
    int32_t toInt() const override { return value_ ? 1 : 0; }
    double toDouble() const override { return value_ ? 1.0 : 0.0; }
    const char* toString() const override;
    JHashCode& toGuid(JHashCode& out) const override;

    // KEL_Impl
    bool giveContentsBack() noexcept override { return true; }
    KEL_Impl* copyWithoutChildren() const override { return new KEL_Boolean_Impl(value_); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void takeContents(const KEL_Impl& source) override;
    bool takeConverted(const KEL_Impl& source) override;

private:
    bool value_;
};
