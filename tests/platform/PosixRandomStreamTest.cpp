// The keys of random streams when the kernel refuses or is interrupted.
#include "platform/RandomStream.h"

#include "support/Guids.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <thread>

namespace {

using kel::platform::exchangeRandomSources;
using kel::platform::RandomSource;
using kel::platform::RandomSources;
using kel::platform::RandomStream;

/// While alive, keys come from these sources.
class Sources {
public:
    Sources(RandomSource call, RandomSource device)
        : before_(exchangeRandomSources({call, device})) {}
    Sources(const Sources&) = delete;
    Sources& operator=(const Sources&) = delete;
    ~Sources() { exchangeRandomSources(before_); }

private:
    RandomSources before_;
};

template <int error> std::ptrdiff_t refuse(void*, std::size_t) {
    errno = error;
    return -1;
}

std::ptrdiff_t giveNothing(void*, std::size_t) {
    return 0;
}

template <char value> std::ptrdiff_t give(void* bytes, std::size_t count) {
    std::memset(bytes, value, count);
    return static_cast<std::ptrdiff_t>(count);
}

/// Gives one byte at a time and is interrupted before each.
std::ptrdiff_t giveWithInterruptions(void* bytes, std::size_t) {
    static bool interrupted = false;
    interrupted = !interrupted;
    return interrupted ? refuse<EINTR>(bytes, 1) : give<'i'>(bytes, 1);
}

/// Returns the bytes of a key that is drawn, or an empty text if none is.
std::string drawnKey() {
    RandomStream::Key key;
    if (!RandomStream::drawKey(key)) {
        return "";
    }
    return {reinterpret_cast<const char*>(key.words), sizeof key.words};
}

const std::string fromCall(32, 'c');
const std::string fromDevice(32, 'd');

TEST(RandomKey, ComesFromTheCall) {
    const Sources sources(give<'c'>, give<'d'>);
    EXPECT_EQ(drawnKey(), fromCall);
}

TEST(RandomKey, AnInterruptedCallIsMadeAgain) {
    const Sources sources(giveWithInterruptions, refuse<ENOENT>);
    EXPECT_EQ(drawnKey(), std::string(32, 'i'));
}

TEST(RandomKey, ComesFromTheDeviceWhereTheCallIsMissingOrForbidden) {
    for (const RandomSource call : {refuse<ENOSYS>, refuse<EPERM>, giveNothing}) {
        const Sources sources(call, give<'d'>);
        EXPECT_EQ(drawnKey(), fromDevice);
    }
}

TEST(RandomKey, AnInterruptedReadOfTheDeviceIsMadeAgain) {
    const Sources sources(refuse<ENOSYS>, giveWithInterruptions);
    EXPECT_EQ(drawnKey(), std::string(32, 'i'));
}

TEST(RandomKey, IsNotDrawnWhenBothFail) {
    const Sources sources(refuse<ENOSYS>, refuse<ENOENT>);
    EXPECT_EQ(drawnKey(), "");
}

TEST(RandomKey, TheDeviceOfThisSystemGivesKeysThatDiffer) {
    const RandomSources own = exchangeRandomSources({});
    exchangeRandomSources(own);
    const Sources sources(refuse<ENOSYS>, own.device);
    const std::string first = drawnKey();
    EXPECT_EQ(first.size(), 32U);
    EXPECT_NE(first, drawnKey());
}

TEST(RandomKey, IsNotDrawnFromADeviceThatCannotBeOpened) {
    const RandomSources own = exchangeRandomSources({});
    exchangeRandomSources(own);
    const Sources sources(refuse<ENOSYS>, own.device);
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(drawnKey(), "");
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_NE(drawnKey(), "");
}

TEST(RandomKeyDeathTest, AProcessDrawsItsFirstIdentityWhenItHasAKey) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // begins a new process
    const auto drawWithoutAndWithAKey = [] {
        JHashCode guid;
        bool isDrawn = false;
        {
            const Sources sources(refuse<ENOSYS>, refuse<ENOENT>);
            isDrawn = kel::platform::createGuid(guid);
        }
        std::exit(!isDrawn && kel::platform::createGuid(guid) ? 0 : 1);
    };
    EXPECT_EXIT(drawWithoutAndWithAKey(), testing::ExitedWithCode(0), "");
}

/// Runs action on a thread of its own, which needs a key first.
template <class Action> void onNewThread(const Action& action) {
    std::thread(action).join();
}

TEST(RandomKey, WithoutOneAThreadDrawsNoIdentity) {
    const Sources sources(refuse<ENOSYS>, refuse<ENOENT>);
    onNewThread([] {
        JHashCode guid;
        EXPECT_FALSE(kel::platform::createGuid(guid));
    });
}

TEST(RandomKey, WithoutOneAThreadDrawsAssuredIdentitiesFromAnEarlierKey) {
    kel::test::draw(); // the process keeps a spare key from now on
    const Sources sources(refuse<ENOSYS>, refuse<ENOENT>);
    onNewThread([] {
        ASSERT_TRUE(kel::platform::isGuidAssured());
        JHashCode first;
        JHashCode second;
        kel::platform::createAssuredGuid(first);
        kel::platform::createAssuredGuid(second);
        EXPECT_FALSE(first.isZero());
        EXPECT_FALSE(first == second);
    });
}

} // namespace
