/// \file
/// KELBinaryOutputStream_Impl: the binary writer.
#pragma once

#include "serial/KELOutputStream_Impl.h"
#include "serial/binary/IdentitySet.h"
#include "serial/binary/RecordLayout.h"
#include "streams/BinaryDataOutput.h"

/// Writes values in the binary format (docs/binary-format.md). Throughout its life it remembers the
/// identities of the values that it has written.
class KELBinaryOutputStream_Impl final : public KELBinaryOutputStream, public KELOutputStream_Impl {
public:
    /// Shares the sink, which is not null and need not seek.
    explicit KELBinaryOutputStream_Impl(const JPointer<JOutputStream>& sink)
        : KELOutputStream_Impl(sink), data_(sink, 1) {}

    // KELInterface_OutputStream_V1 and JDataOutput
    int32_t getByteOrder() const override { return data_.getByteOrder(); }
    void setByteOrder(int32_t order) override { data_.setByteOrder(order); }
    void JWrite8(int8_t value) override;
    void JWrite16(int16_t value) override;
    void JWrite32(int32_t value) override;
    void JWrite64(JLong64 value) override;
    void JWrite128(const JHashCode& value) override;
    void JWriteString(const char* text) override;
    void JWriteDouble(double value) override;
    using KELOutputStream_Impl::JWrite64;

    /// Changes the longest String that is accepted. For tests.
    void setLongestString(uint64_t bytes) { longestString_ = bytes; }

private:
    void writeTree(KEL* value) override;

    BinaryDataOutput data_;
    kel::IdentitySet written_;
    uint64_t longestString_ = kel::binary::longestBytes;
};
