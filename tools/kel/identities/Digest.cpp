#include "identities/Digest.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <utility>

namespace kel::tool {

namespace {

constexpr std::array<uint32_t, 8> initial = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                             0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

/// The order in which each round takes the words of the block.
constexpr unsigned char orders[10][16] = {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
                                          {14, 10, 4, 8, 9, 15, 13, 6, 1, 12, 0, 2, 11, 7, 5, 3},
                                          {11, 8, 12, 0, 5, 2, 15, 13, 10, 14, 3, 6, 7, 1, 9, 4},
                                          {7, 9, 3, 1, 13, 12, 11, 14, 2, 6, 5, 10, 4, 0, 15, 8},
                                          {9, 0, 5, 7, 2, 4, 10, 15, 14, 1, 11, 12, 6, 8, 3, 13},
                                          {2, 12, 6, 10, 0, 11, 8, 3, 4, 13, 7, 5, 15, 14, 1, 9},
                                          {12, 5, 1, 15, 14, 13, 4, 10, 0, 7, 6, 3, 9, 2, 8, 11},
                                          {13, 11, 7, 14, 12, 1, 3, 9, 5, 0, 15, 4, 8, 6, 2, 10},
                                          {6, 15, 14, 9, 11, 3, 0, 8, 12, 2, 13, 7, 1, 4, 10, 5},
                                          {10, 2, 8, 4, 7, 6, 1, 5, 15, 11, 9, 14, 3, 12, 13, 0}};

uint32_t wordAt(const unsigned char* bytes) {
    return bytes[0] | uint32_t{bytes[1]} << 8U | uint32_t{bytes[2]} << 16U |
           uint32_t{bytes[3]} << 24U;
}

void mix(uint32_t& a, uint32_t& b, uint32_t& c, uint32_t& d, uint32_t x, uint32_t y) {
    a += b + x;
    d = std::rotr(d ^ a, 16);
    c += d;
    b = std::rotr(b ^ c, 12);
    a += b + y;
    d = std::rotr(d ^ a, 8);
    c += d;
    b = std::rotr(b ^ c, 7);
}

using Words = std::array<uint32_t, 16>;

/// Mixes the words of a block into the state v.
template <size_t round> void mixRound(Words& v, const Words& words) {
    constexpr const auto& order = orders[round]; // known here, so that no index is computed later
    mix(v[0], v[4], v[8], v[12], words[order[0]], words[order[1]]);
    mix(v[1], v[5], v[9], v[13], words[order[2]], words[order[3]]);
    mix(v[2], v[6], v[10], v[14], words[order[4]], words[order[5]]);
    mix(v[3], v[7], v[11], v[15], words[order[6]], words[order[7]]);
    mix(v[0], v[5], v[10], v[15], words[order[8]], words[order[9]]);
    mix(v[1], v[6], v[11], v[12], words[order[10]], words[order[11]]);
    mix(v[2], v[7], v[8], v[13], words[order[12]], words[order[13]]);
    mix(v[3], v[4], v[9], v[14], words[order[14]], words[order[15]]);
}

template <size_t... rounds>
void mixRounds(Words& v, const Words& words, std::index_sequence<rounds...>) {
    (mixRound<rounds>(v, words), ...);
}

} // namespace

Digest::Digest() : state_(initial) {
    static constexpr unsigned char personalization[] = {'K', 'E', 'L', ' ', 'i', 'd', 's', '1'};
    constexpr uint32_t oneNodeWithoutKey = 0x01010000;
    state_[0] ^= oneNodeWithoutKey | sizeof(Identity);
    state_[6] ^= wordAt(personalization);
    state_[7] ^= wordAt(personalization + 4);
}

Digest& Digest::add(std::string_view bytes) {
    while (!bytes.empty()) {
        if (used_ == blockSize) { // the last block must wait for take
            compress(false);
        }
        const size_t size = std::min(bytes.size(), blockSize - used_);
        std::memcpy(block_.data() + used_, bytes.data(), size);
        used_ += size;
        bytes.remove_prefix(size);
    }
    return *this;
}

Digest& Digest::add(uint64_t number) {
    char bytes[sizeof number];
    for (size_t i = 0; i < sizeof number; ++i) {
        bytes[i] = static_cast<char>(number >> 8 * i & 0xFFU);
    }
    return add({bytes, sizeof bytes});
}

Identity Digest::take() {
    std::fill(block_.begin() + static_cast<std::ptrdiff_t>(used_), block_.end(),
              static_cast<unsigned char>(0));
    compress(true);
    Identity result;
    for (size_t i = 0; i < result.size(); ++i) {
        result[i] = static_cast<unsigned char>(state_[i / 4] >> 8 * (i % 4) & 0xFFU);
    }
    return result;
}

void Digest::compress(bool isLast) {
    count_ += used_;
    used_ = 0;
    Words words;
    for (size_t i = 0; i < words.size(); ++i) {
        words[i] = wordAt(block_.data() + 4 * i);
    }
    Words v;
    std::copy(state_.begin(), state_.end(), v.begin());
    std::copy(initial.begin(), initial.end(), v.begin() + 8);
    v[12] ^= static_cast<uint32_t>(count_);
    v[13] ^= static_cast<uint32_t>(count_ >> 32U);
    if (isLast) {
        v[14] = ~v[14];
    }
    mixRounds(v, words, std::make_index_sequence<std::size(orders)>());
    for (size_t i = 0; i < state_.size(); ++i) {
        state_[i] ^= v[i] ^ v[i + 8];
    }
}

} // namespace kel::tool
