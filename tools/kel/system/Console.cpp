#include "system/Console.h"

#include "system/System.h"

#include <cstdio>
#include <system_error>

namespace kel::tool {

namespace {

constexpr auto patience = std::chrono::seconds(1);
constexpr auto redrawAfter = std::chrono::milliseconds(250);

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

} // namespace

Console::Console() {
    if (!isTerminal(stderr)) {
        return;
    }
    try {
        drawer_ = std::thread([this] { drawUntilEnd(); });
    } catch (const std::system_error&) {
        // The system gives no thread now: the work continues, but without progress.
    }
}

Console::~Console() {
    if (!drawer_.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
        erase();
    }
    changed_.notify_all();
    drawer_.join();
}

void Console::say(const std::string& message) {
    const std::lock_guard lock(mutex_);
    erase();
    print("kel: " + message + '\n');
}

void Console::begin(const std::string& work) {
    const std::lock_guard lock(mutex_);
    work_ = work;
}

void Console::hush() {
    const std::lock_guard lock(mutex_);
    erase();
    work_.clear();
}

void Console::drawUntilEnd() {
    std::unique_lock lock(mutex_);
    auto wait = Clock::duration(patience);
    while (!changed_.wait_for(lock, wait, [this] { return isOver_; })) {
        wait = redrawAfter;
        if (work_.empty()) {
            continue;
        }
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start_).count();
        erase();
        print("kel: " + work_ + ", " + std::to_string(seconds) + " s");
        isDrawn_ = true;
    }
}

void Console::erase() {
    if (isDrawn_) {
        print("\r\x1b[K");
        isDrawn_ = false;
    }
}

} // namespace kel::tool
