/// \file
/// KEL_Int_Impl: an Int value.
#pragma once

#include "values/KEL_Impl.h"

#include <kel/KEL_Int.h>

/// Implements KEL_Int.
class KEL_Int_Impl final : public KEL_Impl, public KEL_Int {
public:
    explicit KEL_Int_Impl(int32_t value) : JObject(IdentityLater()), value_(value) {}

    /// Makes the same value with a given identity.
    KEL_Int_Impl(const JHashCode& identity, int32_t value) : JObject(identity), value_(value) {}

    int32_t getType() const override { return KELKind_Int; }

    // KELInterface_Int_V1
    int32_t getValue() const override { return value_; }
    void setValue(int32_t value) override;
    KEL_Int* setBoolean(bool value) override;
    KEL_Int* setInt(int32_t value) override;
    KEL_Int* setDouble(double value) override;
    KEL_Int* setString(const char* text) override;
    KEL_Int* setguid(const JHashCode& value) override;

    // KELInterface_Casting_V1
    bool toBoolean() const override { return value_ == 1; }
    int32_t toInt() const override { return value_; }
    double toDouble() const override { return value_; }
    const char* toString() const override;
    JHashCode& toGuid(JHashCode& out) const override;

    // KEL_Impl
    bool giveContentsBack() noexcept override { return true; }
    KEL_Impl* copyWithoutChildren() const override { return new KEL_Int_Impl(value_); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void takeContents(const KEL_Impl& source) override;
    bool takeConverted(const KEL_Impl& source) override;

private:
    int32_t value_;
};
