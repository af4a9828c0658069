/// \file
/// Console: messages and progress on stderr.
#pragma once

#include "failures/Failure.h"
#include "words/Painter.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace kel::tool {

/// When output is coloured.
enum class ColourChoice { automatic, always, never };

/// The stages of a command's work on a file.
enum class Work { starting, reading, checking, writing };

/// Writes everything that people read to stderr. If stderr is a terminal and the work has taken
/// more than a second, a line at the bottom shows the current work and its duration. It disappears
/// before a message and at the end. A separate thread draws the line, because the library reads and
/// writes a value in one call. Control characters in messages and names are escaped. Printing
/// allocates nothing.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    /// Removes the progress line.
    ~Console();

    /// Makes the console print no warnings and no progress.
    void beQuiet();

    /// Returns whether only errors are wanted.
    bool isQuiet() const { return isQuiet_; }

    /// Chooses when output is coloured: by default on terminals unless NO_COLOR is set.
    void choose(ColourChoice choice);

    /// Returns what paints the output to stdout or stderr.
    Painter painterFor(std::FILE* file) const;

    /// Prints "kel: " and the message on a line.
    void say(std::string_view message) noexcept;

    /// Prints "kel: warning: " and the message on a line, unless the console is quiet.
    void warn(std::string_view message) noexcept;

    /// Prints "kel: ", the current file, and the message on a line.
    /// \return the trouble that the failure is, by the current work
    Trouble sayOfFile(std::string_view message) noexcept;

    /// Reports that memory ran out. \return the trouble
    Trouble sayOutOfMemory() noexcept;

    /// States that the user limits the memory, which the report then mentions.
    void knowMemoryLimit() { isMemoryLimited_ = true; }

    /// Sets the current work.
    void begin(Work work, const std::string& file);

    /// Ends the progress line for good: later output may be written to the terminal itself.
    void hush();

    /// Returns whether the system took every message.
    bool hasSaidAll() const { return hasSaidAll_; }

private:
    using Clock = std::chrono::steady_clock;

    void drawUntilEnd();
    void erase();
    void beginLine(Paint paint, std::string_view lead);
    void endLine(std::string_view message);
    void print(std::string_view text);
    void printName(std::string_view name);

    const Clock::time_point start_ = Clock::now();
    std::mutex mutex_; ///< guards all below
    std::condition_variable changed_;
    Work work_ = Work::starting;
    std::string file_; ///< the name of the file that is worked on
    bool isMemoryLimited_ = false;
    bool isQuiet_ = false;
    ColourChoice choice_ = ColourChoice::automatic;
    Painter painter_; ///< of stderr
    bool isHushed_ = false;
    bool isDrawn_ = false;
    bool isOver_ = false;
    bool hasSaidAll_ = true;
    std::thread drawer_; ///< runs only for a terminal
};

} // namespace kel::tool
