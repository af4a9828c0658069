#include "diff/KeyedHash.h"

#include "document/Values.h"

#include <bit>

namespace kel::tool {

HashKey HashKey::draw() {
    JHashCode drawn;
    made(CreateKELInt(0))->getHashCode(drawn);
    return {drawn.w0 | uint64_t{drawn.w1} << 32U, drawn.w2 | uint64_t{drawn.w3} << 32U};
}

KeyedHash::KeyedHash(const HashKey& key)
    : a_(key.low ^ 0x736f6d6570736575U), b_(key.high ^ 0x646f72616e646f6dU ^ 0xeeU),
      c_(key.low ^ 0x6c7967656e657261U), d_(key.high ^ 0x7465646279746573U) {}

void KeyedHash::mix() {
    a_ += b_;
    b_ = std::rotl(b_, 13) ^ a_;
    a_ = std::rotl(a_, 32);
    c_ += d_;
    d_ = std::rotl(d_, 16) ^ c_;
    a_ += d_;
    d_ = std::rotl(d_, 21) ^ a_;
    c_ += b_;
    b_ = std::rotl(b_, 17) ^ c_;
    c_ = std::rotl(c_, 32);
}

void KeyedHash::add(uint64_t word) {
    d_ ^= word;
    mix();
    a_ ^= word;
}

void KeyedHash::add(std::string_view bytes) {
    constexpr size_t size = sizeof(uint64_t);
    add(uint64_t{bytes.size()});
    while (!bytes.empty()) {
        uint64_t word = 0;
        const size_t count = bytes.size() < size ? bytes.size() : size;
        for (size_t i = 0; i < count; ++i) {
            word |= uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
        }
        add(word);
        bytes.remove_prefix(count);
    }
}

KeyedDigest KeyedHash::digest() const {
    KeyedHash last = *this;
    KeyedDigest digest;
    last.c_ ^= 0xeeU;
    for (int round = 0; round < 3; ++round) {
        last.mix();
    }
    digest.low = last.a_ ^ last.b_ ^ last.c_ ^ last.d_;
    last.b_ ^= 0xddU;
    for (int round = 0; round < 3; ++round) {
        last.mix();
    }
    digest.high = last.a_ ^ last.b_ ^ last.c_ ^ last.d_;
    return digest;
}

} // namespace kel::tool
