#include "streams/ByteOrder.h"

#include "support/Bytes.h"

#include <array>
#include <gtest/gtest.h>

namespace {

template <size_t count, class Store, class Value> std::string stored(Store store, Value value) {
    std::array<uint8_t, count> out{};
    store(out.data(), value);
    return hex({reinterpret_cast<const char*>(out.data()), count});
}

TEST(ByteOrder, LittleEndianPutsTheLeastByteFirst) {
    EXPECT_EQ(stored<2>(kel::storeLittle16, uint16_t{0x0102}), "02 01");
    EXPECT_EQ(stored<4>(kel::storeLittle32, 0x01020304U), "04 03 02 01");
    EXPECT_EQ(stored<8>(kel::storeLittle64, 0x0102030405060708U), "08 07 06 05 04 03 02 01");
    EXPECT_EQ(stored<16>(kel::storeLittle128, JHashCode(0x01020304, 5, 6, 7)),
              "04 03 02 01 05 00 00 00 06 00 00 00 07 00 00 00");
    EXPECT_EQ(stored<8>(kel::storeLittleDouble, 1.5), "00 00 00 00 00 00 F8 3F");
}

TEST(ByteOrder, BigEndianPutsTheGreatestByteFirst) {
    EXPECT_EQ(stored<2>(kel::storeBig16, uint16_t{0x0102}), "01 02");
    EXPECT_EQ(stored<4>(kel::storeBig32, 0x01020304U), "01 02 03 04");
    EXPECT_EQ(stored<8>(kel::storeBig64, 0x0102030405060708U), "01 02 03 04 05 06 07 08");
    EXPECT_EQ(stored<16>(kel::storeBig128, JHashCode(0x01020304, 5, 6, 7)),
              "00 00 00 07 00 00 00 06 00 00 00 05 01 02 03 04");
}

TEST(ByteOrder, LoadsWhatWasStoredAtEveryPowerOfTwo) {
    for (int bit = 0; bit < 64; ++bit) {
        for (const uint64_t v : {1ULL << bit, (1ULL << bit) - 1, ~(1ULL << bit)}) {
            uint8_t b[8];
            kel::storeLittle64(b, v);
            EXPECT_EQ(kel::loadLittle64(b), v);
            EXPECT_EQ(kel::loadLittle32(b), static_cast<uint32_t>(v));
            EXPECT_EQ(kel::loadLittle16(b), static_cast<uint16_t>(v));
            kel::storeBig64(b, v);
            EXPECT_EQ(kel::loadBig64(b), v);
            EXPECT_EQ(kel::loadBig32(b), static_cast<uint32_t>(v >> 32));
            EXPECT_EQ(kel::loadBig16(b), static_cast<uint16_t>(v >> 48));
        }
    }
}

TEST(ByteOrder, LoadsWideValues) {
    uint8_t b[16];
    const JHashCode value(0x01020304, 0xFFFFFFFF, 0x80000000, 7);
    kel::storeLittle128(b, value);
    EXPECT_EQ(kel::loadLittle128(b), value);
    kel::storeBig128(b, value);
    EXPECT_EQ(kel::loadBig128(b), value);
    kel::storeLittleDouble(b, -0.1);
    EXPECT_EQ(kel::loadLittleDouble(b), -0.1);
}

} // namespace
