#include "platform/Slab.h"

#if !defined(_WIN32)

#include <algorithm>
#include <iterator>
#include <new>
#include <sys/mman.h>

namespace kel::platform {

static_assert(sizeof(Region) < slabSize / 8);

void Slab::begin(std::size_t newClass) {
    Region* region = Region::of(this);
    const auto index = static_cast<std::size_t>(this - region->slabs);
    word = reinterpret_cast<Word*>(reinterpret_cast<char*>(region) + index * slabSize);

    const std::size_t size = sizeOfClass(newClass);
    const std::size_t numbers = slabSize / size;
    wordCount = static_cast<uint32_t>((numbers + wordBits - 1) / wordBits);
    std::fill_n(word, wordCount, ~Word{0});
    word[wordCount - 1] &= ~Word{0} >> (wordCount * wordBits - numbers);
    const std::size_t head = index == 0 ? sizeof(Region) : wordCount * sizeof(Word);
    const std::size_t first = (head + size - 1) / size;
    for (std::size_t number = 0; number < first; ++number) {
        word[number / wordBits] &= ~(Word{1} << number % wordBits);
    }

    capacity = static_cast<uint32_t>(numbers - first);
    used = 0;
    inverse = static_cast<uint32_t>((uint64_t{1} << 32) / size + 1);
    sizeClass = static_cast<uint8_t>(newClass);
}

void Slab::findWord() {
    do {
        ++word;
        if (word == mapOf(word) + wordCount) {
            rewind();
        }
    } while (*word == 0);
}

void Slab::rewind() {
    word = mapOf(word);
}

Region* Region::map() {
    // Twice the size contains an aligned piece. The rest is returned at once.
    char* start = static_cast<char*>(
        mmap(nullptr, 2 * regionSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (start == MAP_FAILED) {
        return nullptr;
    }
    const std::size_t before = (regionSize - reinterpret_cast<uintptr_t>(start)) & (regionSize - 1);
    // reached by chance: the system seldom maps at a multiple of the size
    if (before > 0) {
        munmap(start, before);
    }
    munmap(start + before + regionSize, regionSize - before); // always some bytes
    return new (start + before) Region();
}

void Region::unmap() {
    munmap(static_cast<void*>(this), regionSize);
}

} // namespace kel::platform

#endif
