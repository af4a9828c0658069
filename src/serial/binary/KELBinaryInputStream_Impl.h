/// \file
/// KELBinaryInputStream_Impl: the binary reader.
#pragma once

#include "serial/KELInputStream_Impl.h"
#include "serial/ValueTable.h"
#include "streams/BinaryDataInput.h"

/// Reads values in the binary format (docs/binary-format.md). Throughout its life it remembers, by
/// identity, the values that it has read, so a reference yields the very same value.
class KELBinaryInputStream_Impl final : public KELBinaryInputStream, public KELInputStream_Impl {
public:
    /// Shares the medium, which is not null.
    explicit KELBinaryInputStream_Impl(const JPointer<JInputStream>& medium)
        : buffered_(new kel::BufferedInputStream(medium)),
          data_(JPointer<JInputStream>::share(buffered_.get()), 1) {}

    /// Takes apart values that contain themselves and that only this stream holds: replaced values,
    /// and those of failed reads.
    ~KELBinaryInputStream_Impl() override;

    // JDataInput
    int32_t getByteOrder() const override { return data_.getByteOrder(); }
    void setByteOrder(int32_t order) override { data_.setByteOrder(order); }
    int8_t JRead8() override;
    int16_t JRead16() override;
    int32_t JRead32() override;
    JLong64 JRead64() override;
    JHashCode JRead128() override;
    JString* JReadString() override;
    double JReadDouble() override;

    // KELInterface_InputStream_V1
    uint64_t& JRead64(uint64_t& out) override { return out = JRead64().value(); }
    JHashCode& JRead128(JHashCode& out) override { return out = JRead128(); }

protected:
    kel::BufferedInput& input() override { return buffered_->input(); }
    KEL_Impl* readTree() override;

private:
    JPointer<kel::BufferedInputStream> buffered_;
    BinaryDataInput data_;
    kel::ValueTable known_;
    bool holdsLoops_ = false;
};
