/// \file
/// KEL_guid_Impl: a guid value.
#pragma once

#include "values/KEL_Impl.h"

#include <kel/KEL_guid.h>

/// Implements KEL_guid.
class KEL_guid_Impl final : public KEL_Impl, public KEL_guid {
public:
    explicit KEL_guid_Impl(const JHashCode& value) : JObject(IdentityLater()), value_(value) {}

    /// Makes the same value with a given identity.
    KEL_guid_Impl(const JHashCode& identity, const JHashCode& value)
        : JObject(identity), value_(value) {}

    int32_t getType() const override { return KELKind_guid; }

    // KELInterface_guid_V1
    JHashCode& getValue(JHashCode& out) const override { return out = value_; }
    void setValue(const JHashCode& value) override;
    KEL_guid* setBoolean(bool value) override;
    KEL_guid* setInt(int32_t value) override;
    KEL_guid* setDouble(double value) override;
    KEL_guid* setString(const char* text) override;
    KEL_guid* setguid(const JHashCode& value) override;

    // KELInterface_Casting_V1
    bool toBoolean() const override { return toInt() != 0; }
    int32_t toInt() const override { return value_.intValue(); }
    double toDouble() const override { return toInt(); }
    const char* toString() const override;
    JHashCode& toGuid(JHashCode& out) const override { return out = value_; }

    // KEL_Impl
    bool giveContentsBack() noexcept override { return true; }
    KEL_Impl* copyWithoutChildren() const override { return new KEL_guid_Impl(value_); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void takeContents(const KEL_Impl& source) override;
    bool takeConverted(const KEL_Impl& source) override;

private:
    JHashCode value_;
};
