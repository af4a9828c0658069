/// \file
/// BinaryDataInput: typed reads of fixed-width binary data.
#pragma once

#include "streams/JDataInput.h"

#include <kel/JPointer.h>

/// Reads integers of fixed width in the set byte order, doubles as the 64-bit integer of their
/// bits, and strings up to a NUL. A read that the input cuts short throws a JEOFException by value.
/// The stream operations are those of the stream underneath.
class BinaryDataInput : public JDataInput {
public:
    /// Reads from a stream, which it shares and which is not null. With order 1 the least
    /// significant byte is first, with any other order the most significant byte.
    BinaryDataInput(const JPointer<JInputStream>& stream, int32_t order)
        : stream_(stream), order_(order) {}

    int32_t getByteOrder() const override { return order_; }
    void setByteOrder(int32_t order) override { order_ = order; }

    /// \throws JEOFException "BinaryDataInput::JRead8(). EOF reached."
    int8_t JRead8() override;
    /// \throws JEOFException "BinaryDataInput::JRead16(). EOF reached."
    int16_t JRead16() override;
    /// \throws JEOFException "BinaryDataInput::JRead32(). EOF reached."
    int32_t JRead32() override;
    /// \throws JEOFException "BinaryDataInput::JRead64(). EOF reached."
    JLong64 JRead64() override;
    /// \throws JEOFException "BinaryDataInput::JRead128(). EOF reached."
    JHashCode JRead128() override;

    /// Reads the characters up to a NUL, which is consumed but not part of the string. The end of
    /// the input ends the string like a NUL if at least one character precedes it.
    /// \throws JEOFException "BinaryDataInput::JReadString(). EOF reached."
    JString* JReadString() override;

    /// \throws JEOFException "BinaryDataInput::JRead64(). EOF reached."
    double JReadDouble() override;

    int32_t JRead() override { return stream_->JRead(); }
    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override {
        return stream_->JRead(buffer, offset, count);
    }
    void JClose() override { stream_->JClose(); }
    int64_t JTell() override { return stream_->JTell(); }
    void JSeek(int64_t position) override { stream_->JSeek(position); }

private:
    bool littleEndian() const { return order_ == 1; }
    void fetch(uint8_t* bytes, int32_t count, const char* failure);

    JPointer<JInputStream> stream_;
    int32_t order_;
};
