/// \file
/// KEL_Double_Impl: a Double value.
#pragma once

#include "runtime/JDouble.h"
#include "values/KEL_Impl.h"

#include <bit>

#include <kel/KEL_Double.h>

/// Implements KEL_Double.
class KEL_Double_Impl final : public KEL_Impl, public KEL_Double {
public:
    explicit KEL_Double_Impl(double value) : JObject(IdentityLater()), value_(value) {}

    /// Makes the same value with a given identity.
    KEL_Double_Impl(const JHashCode& identity, double value) : JObject(identity), value_(value) {}

    int32_t getType() const override { return KELKind_Double; }

    // KELInterface_Double_V1
    double getValue() const override { return value_; }
    void setValue(double value) override;
    KEL_Double* setBoolean(bool value) override;
    KEL_Double* setInt(int32_t value) override;
    KEL_Double* setDouble(double value) override;
    KEL_Double* setString(const char* text) override;
    KEL_Double* setguid(const JHashCode& value) override;

    // KELInterface_Casting_V1
    bool toBoolean() const override { return value_ == 1.0; }
    int32_t toInt() const override { return kel::truncateToInt32(value_); }
    double toDouble() const override { return value_; }
    /// Returns all the bits of the number. Machines that return doubles in x87 registers change the
    /// bits of a signalling NaN on the way.
    uint64_t toDoubleBits() const { return std::bit_cast<uint64_t>(value_); }
    const char* toString() const override;
    JHashCode& toGuid(JHashCode& out) const override;

    // KEL_Impl
    bool giveContentsBack() noexcept override { return true; }
    KEL_Impl* copyWithoutChildren() const override { return new KEL_Double_Impl(value_); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void takeContents(const KEL_Impl& source) override;
    bool takeConverted(const KEL_Impl& source) override;

private:
    double value_;
};
