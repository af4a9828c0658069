/// \file
/// BinaryDataOutput: typed writes of fixed-width binary data.
#pragma once

#include "streams/JDataOutput.h"

#include <kel/JPointer.h>

/// Writes integers of fixed width in the set byte order, doubles as the 64-bit integer of their
/// bits, and strings with their NUL. Failures and the stream operations are those of the stream
/// underneath.
class BinaryDataOutput : public JDataOutput {
public:
    /// Writes to a stream, which it shares and which is not null. With order 1 the least
    /// significant byte is first, and an integer is one write. With any other order the most
    /// significant byte is first, and each byte is a write of its own.
    BinaryDataOutput(const JPointer<JOutputStream>& stream, int32_t order)
        : stream_(stream), order_(order) {}

    int32_t getByteOrder() const override { return order_; }
    void setByteOrder(int32_t order) override { order_ = order; }
    void JWrite8(int8_t value) override { stream_->JWrite(value); }
    void JWrite16(int16_t value) override;
    void JWrite32(int32_t value) override;
    void JWrite64(JLong64 value) override;
    void JWrite128(const JHashCode& value) override;

    /// Writes the characters and the NUL in one write; null writes nothing.
    void JWriteString(const char* text) override;
    void JWriteDouble(double value) override;

    void JWrite(int32_t byte) override { stream_->JWrite(byte); }
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override {
        stream_->JWrite(buffer, offset, count);
    }
    void JFlush() override { stream_->JFlush(); }
    void JClose() override { stream_->JClose(); }
    int64_t JTell() override { return stream_->JTell(); }
    void JSeek(int64_t position) override { stream_->JSeek(position); }

private:
    bool littleEndian() const { return order_ == 1; }
    void putByByte(const uint8_t* bytes, int32_t count);

    JPointer<JOutputStream> stream_;
    int32_t order_;
};
