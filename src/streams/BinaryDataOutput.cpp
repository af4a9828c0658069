#include "streams/BinaryDataOutput.h"

#include "streams/ByteOrder.h"

#include <bit>
#include <climits>
#include <cstring>
#include <kel/JException.h>

using namespace kel;

void BinaryDataOutput::putByByte(const uint8_t* bytes, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        stream_->JWrite(bytes[i]);
    }
}

void BinaryDataOutput::JWrite16(int16_t value) {
    uint8_t bytes[2];
    if (littleEndian()) {
        storeLittle16(bytes, static_cast<uint16_t>(value));
        stream_->JWrite(bytes, 0, 2);
    } else {
        storeBig16(bytes, static_cast<uint16_t>(value));
        putByByte(bytes, 2);
    }
}

void BinaryDataOutput::JWrite32(int32_t value) {
    uint8_t bytes[4];
    if (littleEndian()) {
        storeLittle32(bytes, static_cast<uint32_t>(value));
        stream_->JWrite(bytes, 0, 4);
    } else {
        storeBig32(bytes, static_cast<uint32_t>(value));
        putByByte(bytes, 4);
    }
}

void BinaryDataOutput::JWrite64(JLong64 value) {
    uint8_t bytes[8];
    if (littleEndian()) {
        storeLittle64(bytes, value.value());
        stream_->JWrite(bytes, 0, 8);
    } else {
        storeBig64(bytes, value.value());
        putByByte(bytes, 8);
    }
}

void BinaryDataOutput::JWrite128(const JHashCode& value) {
    uint8_t bytes[16];
    if (littleEndian()) {
        storeLittle128(bytes, value);
        stream_->JWrite(bytes, 0, 16);
    } else {
        storeBig128(bytes, value);
        putByByte(bytes, 16);
    }
}

void BinaryDataOutput::JWriteDouble(double value) {
    JWrite64(JLong64::of(std::bit_cast<uint64_t>(value)));
}

void BinaryDataOutput::JWriteString(const char* text) {
    if (text == nullptr) {
        return;
    }
    // One write carries at most as many bytes as its 32-bit count can express.
    const auto* bytes = reinterpret_cast<const uint8_t*>(text);
    size_t left = std::strlen(text) + 1;
    // not reached: a longer text takes 2 GB
    for (; left > INT32_MAX; left -= INT32_MAX, bytes += INT32_MAX) {
        stream_->JWrite(bytes, 0, INT32_MAX);
    }
    stream_->JWrite(bytes, 0, static_cast<int32_t>(left));
}
