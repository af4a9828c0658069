/// \file
/// KELASCIIInputStream_Impl: the text reader.
#pragma once

#include "serial/KELInputStream_Impl.h"
#include "serial/ValueTable.h"
#include "serial/text/TextSource.h"

/// Reads values in the text format (docs/text-format.md), and single numbers and words between
/// them.
class KELASCIIInputStream_Impl : public KELInputStream_Impl {
public:
    /// Shares the medium, which is not null.
    explicit KELASCIIInputStream_Impl(const JPointer<JInputStream>& medium) : source_(medium) {}

    // JDataInput: each function reads one number token and returns its low bits.
    int32_t getByteOrder() const override { return byteOrder_; }
    void setByteOrder(int32_t order) override { byteOrder_ = order; }
    int8_t JRead8() override { return static_cast<int8_t>(JRead32()); }
    int16_t JRead16() override { return static_cast<int16_t>(JRead32()); }
    int32_t JRead32() override;
    JLong64 JRead64() override;
    JHashCode JRead128() override;
    JString* JReadString() override;
    double JReadDouble() override;

    // KELInterface_InputStream_V1
    uint64_t& JRead64(uint64_t& out) override { return out = JRead64().value(); }
    JHashCode& JRead128(JHashCode& out) override { return out = JRead128(); }

protected:
    kel::BufferedInput& input() override { return source_.input(); }
    KEL_Impl* readTree() override;

private:
    kel::Token readNumber();

    kel::TextSource source_;
    kel::ValueTable known_;
    int32_t byteOrder_ = 1;
};
