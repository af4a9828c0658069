/// \file
/// Console: messages and progress on stderr.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace kel::tool {

/// Writes everything that people read to stderr. If stderr is a terminal and the work has taken
/// more than a second, a line at the bottom shows the current work and its duration. It disappears
/// before a message and at the end. A separate thread draws the line, because the library reads and
/// writes a value in one call.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    /// Removes the progress line.
    ~Console();

    /// Prints "kel: " and the message on a line.
    void say(const std::string& message);

    /// Sets the current work, such as "reading FILE".
    void begin(const std::string& work);

    /// Ends the progress line for good: later output may be written to the terminal itself.
    void hush();

private:
    using Clock = std::chrono::steady_clock;

    void drawUntilEnd();
    void erase();

    const Clock::time_point start_ = Clock::now();
    std::mutex mutex_; ///< guards all below
    std::condition_variable changed_;
    std::string work_;
    bool isDrawn_ = false;
    bool isOver_ = false;
    std::thread drawer_; ///< runs only for a terminal
};

} // namespace kel::tool
