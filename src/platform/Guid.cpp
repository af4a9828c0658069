#include "platform/Guid.h"

#include <atomic>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <objbase.h>
#else
#include "platform/RandomStream.h"

#include <pthread.h>
#endif

namespace kel::platform {

namespace {

#if defined(_WIN32)

bool drawFromPlatform(JHashCode& out) {
    GUID guid;
    if (FAILED(CoCreateGuid(&guid))) {
        return false;
    }
    KELGuid copy = {guid.Data1, guid.Data2, guid.Data3, {}};
    for (int i = 0; i < 8; ++i) {
        copy.data4[i] = guid.Data4[i];
    }
    out = JHashCode(copy);
    return true;
}

#else

/// Counts the forks that led to this process. A generator keyed under another number is a copy of
/// the parent's.
std::atomic<uint32_t> processGeneration{1};

void enterChild() {
    processGeneration.fetch_add(1, std::memory_order_relaxed);
}

[[maybe_unused]] const int forkHandler = pthread_atfork(nullptr, nullptr, enterChild);

struct Generator {
    uint32_t generation = 0; // 0: never keyed
    RandomStream stream;
};

thread_local Generator generator;

bool drawFromPlatform(JHashCode& out) {
    Generator& mine = generator;
    const uint32_t now = processGeneration.load(std::memory_order_relaxed);
    if (mine.generation != now) {
        mine.generation = 0;
        if (!mine.stream.key()) {
            return false;
        }
        mine.generation = now;
    }
    const uint32_t* words = mine.stream.nextFourWords();
    const uint32_t version4 = 0x40000000U; // high nibble of the third field
    const uint32_t variant1 = 0x00000080U; // top two bits of the first tail byte
    out = JHashCode(words[0], (words[1] & 0x0FFFFFFFU) | version4,
                    (words[2] & 0xFFFFFF3FU) | variant1, words[3]);
    return true;
}

#endif

std::atomic<GuidSource> installedSource{drawFromPlatform};

} // namespace

bool createGuid(JHashCode& out) {
    return installedSource.load(std::memory_order_relaxed)(out);
}

GuidSource exchangeGuidSource(GuidSource source) {
    return installedSource.exchange(source == nullptr ? drawFromPlatform : source);
}

} // namespace kel::platform
