/// \file
/// The words of a random stream are those of ChaCha with eight rounds.
#include "platform/RandomStream.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

using kel::platform::RandomStream;

using Block = std::array<uint32_t, 16>;

/// Returns the next blocks of a stream, as many as it computes side by side. It delivers the first
/// words of all of them, then the second words, and so on.
std::vector<Block> nextBlocks(RandomStream& stream) {
    std::vector<Block> blocks(RandomStream::lanes);
    for (std::size_t word = 0; word < 16; ++word) {
        const uint32_t* words = stream.nextFourWords();
        for (std::size_t lane = 0; lane < RandomStream::lanes; ++lane) {
            blocks[lane][word] = words[lane];
        }
    }
    return blocks;
}

TEST(RandomWords, OfAKeyOfZerosAreThePublishedOnes) {
    RandomStream stream;
    stream.keyWith({}, 0, 0);
    const std::vector<Block> blocks = nextBlocks(stream);
    EXPECT_EQ(blocks[0],
              (Block{0x2FEF003E, 0xD6405F89, 0xE8B85B7F, 0xA1A5091F, 0xC30E842C, 0x3B7F9ACE,
                     0x88E11B18, 0x1E1A71EF, 0x72E14C98, 0x416F21B9, 0x6753449F, 0x19566D45,
                     0xA3424A31, 0x01B086DA, 0xB8FD7B38, 0x42FE0C0E}));
    EXPECT_EQ(blocks[1],
              (Block{0x0DFAAED2, 0x51C1A5EA, 0x6CDB0ABF, 0xADA5F201, 0x1258FDC0, 0xAAA2F959,
                     0x8F0FF2DC, 0x6BA266D5, 0x38EC3250, 0x98DAC5BB, 0x566F0CEE, 0x652A878B,
                     0x25BF8AA0, 0xBB21EB1D, 0xD8E5564B, 0xAA681E82}));
}

TEST(RandomWords, DependOnTheWholeKeyOnBothNumbersAndOnTheBlock) {
    RandomStream::Key key;
    for (uint32_t i = 0; i < 8; ++i) {
        key.words[i] = 0x03020100U + i * 0x04040404U; // the bytes 0, 1, 2 and so on
    }
    RandomStream stream;
    stream.keyWith(key, 0x01020304, 0x05060708);
    nextBlocks(stream);
    EXPECT_EQ(nextBlocks(stream)[1],
              (Block{0x3EE1B86A, 0x4F0AA76C, 0x817E573E, 0xE21C86AD, 0xB2373C1E, 0xED5FE5E8,
                     0x8AEF4525, 0x4FBF0B49, 0x20D74298, 0x56F8561D, 0xF4637C73, 0xBA61B810,
                     0x34D5DD6A, 0x56D60DA6, 0x8441D878, 0x7880EDC7}));
}

} // namespace
