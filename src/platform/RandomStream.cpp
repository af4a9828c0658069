#include "platform/RandomStream.h"

#if !defined(_WIN32)

#include <bit>
#include <cerrno>
#include <sys/random.h>

namespace kel::platform {

bool RandomStream::key() {
    auto* bytes = reinterpret_cast<unsigned char*>(key_);
    std::size_t missing = sizeof key_;
    while (missing > 0) {
        const ssize_t got = getrandom(bytes, missing, 0);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return false;
        }
        bytes += got;
        missing -= static_cast<std::size_t>(got);
    }
    block_ = 0;
    used_ = wordCount;
    return true;
}

// The state is kept transposed, one row per word of the state and one column per block, so that
// compilers turn each step into vector instructions.
void RandomStream::fill() {
    using Row = uint32_t[lanes];
    Row start[16];
    const uint32_t constants[4] = {0x61707865U, 0x3320646EU, 0x79622D32U, 0x6B206574U};
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        for (std::size_t i = 0; i < 4; ++i) {
            start[i][lane] = constants[i];
        }
        for (std::size_t i = 0; i < 8; ++i) {
            start[4 + i][lane] = key_[i];
        }
        const uint64_t block = block_ + lane;
        start[12][lane] = static_cast<uint32_t>(block);
        start[13][lane] = static_cast<uint32_t>(block >> 32);
        start[14][lane] = 0;
        start[15][lane] = 0;
    }
    block_ += lanes;

    Row state[16];
    for (std::size_t i = 0; i < 16; ++i) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            state[i][lane] = start[i][lane];
        }
    }
    const auto quarterRound = [&state](std::size_t a, std::size_t b, std::size_t c, std::size_t d) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            state[a][lane] += state[b][lane];
            state[d][lane] = std::rotl(state[d][lane] ^ state[a][lane], 16);
            state[c][lane] += state[d][lane];
            state[b][lane] = std::rotl(state[b][lane] ^ state[c][lane], 12);
            state[a][lane] += state[b][lane];
            state[d][lane] = std::rotl(state[d][lane] ^ state[a][lane], 8);
            state[c][lane] += state[d][lane];
            state[b][lane] = std::rotl(state[b][lane] ^ state[c][lane], 7);
        }
    };
    for (int doubleRound = 0; doubleRound < 4; ++doubleRound) {
        quarterRound(0, 4, 8, 12);
        quarterRound(1, 5, 9, 13);
        quarterRound(2, 6, 10, 14);
        quarterRound(3, 7, 11, 15);
        quarterRound(0, 5, 10, 15);
        quarterRound(1, 6, 11, 12);
        quarterRound(2, 7, 8, 13);
        quarterRound(3, 4, 9, 14);
    }
    for (std::size_t i = 0; i < 16; ++i) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            words_[lane * 16 + i] = state[i][lane] + start[i][lane];
        }
    }
    used_ = 0;
}

} // namespace kel::platform

#endif
