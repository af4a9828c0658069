#include "streams/BinaryDataInput.h"

#include "runtime/MemoryPool.h"
#include "streams/ByteOrder.h"

#include <bit>
#include <kel/JException.h>

using namespace kel;

void BinaryDataInput::fetch(uint8_t* bytes, int32_t count, const char* failure) {
    // A short read reached the end or a failure. Only the next read shows which of them it was.
    for (int32_t done = 0; done < count;) {
        const int32_t got = stream_->JRead(bytes, done, count - done);
        if (got < 1) {
            throw JEOFException(failure);
        }
        done += got;
    }
}

int8_t BinaryDataInput::JRead8() {
    const int32_t byte = stream_->JRead();
    if (byte == -1) {
        throw JEOFException("BinaryDataInput::JRead8(). EOF reached.");
    }
    return static_cast<int8_t>(byte);
}

int16_t BinaryDataInput::JRead16() {
    uint8_t bytes[2];
    fetch(bytes, 2, "BinaryDataInput::JRead16(). EOF reached.");
    return static_cast<int16_t>(littleEndian() ? loadLittle16(bytes) : loadBig16(bytes));
}

int32_t BinaryDataInput::JRead32() {
    uint8_t bytes[4];
    fetch(bytes, 4, "BinaryDataInput::JRead32(). EOF reached.");
    return static_cast<int32_t>(littleEndian() ? loadLittle32(bytes) : loadBig32(bytes));
}

JLong64 BinaryDataInput::JRead64() {
    uint8_t bytes[8];
    fetch(bytes, 8, "BinaryDataInput::JRead64(). EOF reached.");
    return JLong64::of(littleEndian() ? loadLittle64(bytes) : loadBig64(bytes));
}

JHashCode BinaryDataInput::JRead128() {
    uint8_t bytes[16];
    fetch(bytes, 16, "BinaryDataInput::JRead128(). EOF reached.");
    return littleEndian() ? loadLittle128(bytes) : loadBig128(bytes);
}

double BinaryDataInput::JReadDouble() {
    return std::bit_cast<double>(JRead64().value());
}

JString* BinaryDataInput::JReadString() {
    constexpr uint32_t step = 512;
    MemoryPool collected(step, step);
    uint8_t run[step];
    uint32_t stored = 0;
    uint32_t inRun = 0;
    int32_t byte = stream_->JRead();
    if (byte == -1) {
        throw JEOFException("BinaryDataInput::JReadString(). EOF reached.");
    }
    for (; byte > 0; byte = stream_->JRead()) {
        run[inRun++] = static_cast<uint8_t>(byte);
        if (inRun == step) {
            collected.write(stored, run, inRun);
            stored += inRun;
            inRun = 0;
        }
    }
    collected.write(stored, run, inRun);
    return new JString(collected, 0, stored + inRun);
}
