#include "platform/Guid.h"

#include <atomic>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <objbase.h>
#else
#include "platform/RandomStream.h"

#include <ctime>
#include <pthread.h>
#include <unistd.h>
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

/// Counts the forks that led to this process. A generator that was keyed under another number is a
/// copy of the parent's.
std::atomic<uint32_t> processGeneration{1};

/// The states of the spare key, which is for streams that the kernel refuses a key. It is drawn
/// together with the first key of the process, before isGuidAssured returns true. No lock protects
/// it, because a fork can copy a lock that nobody will unlock.
enum class SpareKey { none, beingKept, kept };
std::atomic<SpareKey> spareKeyState{SpareKey::none};
RandomStream::Key spareKey;
std::atomic<uint32_t> spareUses{0};

void keepSpareKey(const RandomStream::Key& key) {
    SpareKey expected = SpareKey::none;
    // reached by chance: else another thread keeps a key at the same moment
    if (spareKeyState.compare_exchange_strong(expected, SpareKey::beingKept)) {
        spareKey = key;
        spareKeyState.store(SpareKey::kept, std::memory_order_release);
    }
}

void enterChild() {
    processGeneration.fetch_add(1, std::memory_order_relaxed);
    // The parent's thread that was about to keep the key need not exist in the child.
    SpareKey expected = SpareKey::beingKept;
    spareKeyState.compare_exchange_strong(expected, SpareKey::none);
}

[[maybe_unused]] const int forkHandler = pthread_atfork(nullptr, nullptr, enterChild);

struct Generator {
    uint32_t generation = 0; // 0: never keyed
    RandomStream stream;
};

thread_local Generator generator;

/// Gives this thread's stream the spare key, with a number that no other stream of this process and
/// its relatives has.
void keyFromSpare(RandomStream& stream) {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    RandomStream::Key key = spareKey;
    key.words[0] ^= static_cast<uint32_t>(now.tv_sec);
    key.words[1] ^= static_cast<uint32_t>(now.tv_nsec);
    stream.keyWith(key, static_cast<uint32_t>(getpid()), spareUses.fetch_add(1));
}

void takeIdentity(RandomStream& stream, JHashCode& out) {
    const uint32_t* words = stream.nextFourWords();
    const uint32_t version4 = 0x40000000U; // high nibble of the third field
    const uint32_t variant1 = 0x00000080U; // top two bits of the first tail byte
    out = JHashCode(words[0], (words[1] & 0x0FFFFFFFU) | version4,
                    (words[2] & 0xFFFFFF3FU) | variant1, words[3]);
}

bool drawFromPlatform(JHashCode& out) {
    Generator& mine = generator;
    const uint32_t now = processGeneration.load(std::memory_order_relaxed);
    if (mine.generation != now) {
        mine.generation = 0;
        RandomStream::Key spare;
        const bool needsSpare = spareKeyState.load(std::memory_order_relaxed) == SpareKey::none;
        if ((needsSpare && !RandomStream::drawKey(spare)) || !mine.stream.keyFromKernel()) {
            return false;
        }
        if (needsSpare) {
            keepSpareKey(spare);
        }
        mine.generation = now;
    }
    takeIdentity(mine.stream, out);
    return true;
}

#endif

std::atomic<GuidSource> installedSource{drawFromPlatform};

} // namespace

bool createGuid(JHashCode& out) {
    return installedSource.load(std::memory_order_relaxed)(out);
}

#if defined(_WIN32)

bool isGuidAssured() {
    return false;
}

void createAssuredGuid(JHashCode&) {}

#else

bool isGuidAssured() {
    return spareKeyState.load(std::memory_order_acquire) == SpareKey::kept &&
           installedSource.load(std::memory_order_relaxed) == drawFromPlatform;
}

void createAssuredGuid(JHashCode& out) {
    if (!drawFromPlatform(out)) {
        Generator& mine = generator;
        keyFromSpare(mine.stream);
        mine.generation = processGeneration.load(std::memory_order_relaxed);
        takeIdentity(mine.stream, out);
    }
}

#endif

GuidSource exchangeGuidSource(GuidSource source) {
    return installedSource.exchange(source == nullptr ? drawFromPlatform : source);
}

} // namespace kel::platform
