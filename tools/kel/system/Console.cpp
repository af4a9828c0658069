#include "system/Console.h"

#include "system/Progress.h"
#include "system/System.h"
#include "words/SafeText.h"

#include <charconv>
#include <cstdlib>
#include <new>
#include <system_error>

namespace kel::tool {

namespace {

constexpr auto patience = std::chrono::seconds(1);
constexpr auto redrawAfter = std::chrono::milliseconds(250);

/// Returns the work in words that the name of a file can follow.
std::string_view wordsFor(Work work) {
    switch (work) {
    // not reached: a program that waits before its work draws nothing
    case Work::starting:
        return "";
    case Work::reading:
        return "reading ";
    case Work::checking:
        return "checking ";
    case Work::writing:
        break;
    }
    return "writing ";
}

} // namespace

Console::Console() : painter_(painterFor(stderr)) {
    // A message reaches the system in one piece, so that the lines of several processes do not mix.
    static char pieces[BUFSIZ];
    std::setvbuf(stderr, pieces, _IOFBF, sizeof pieces);
    if (!isTerminal(stderr)) {
        return;
    }
    // If the system gives no thread or no memory now, the work continues without progress.
    try {
        drawer_ = std::thread([this] { drawUntilEnd(); });
    } catch (const std::system_error&) {
    } catch (const std::bad_alloc&) {
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

void Console::beQuiet() {
    const std::lock_guard lock(mutex_);
    isQuiet_ = true;
}

void Console::choose(ColourChoice choice) {
    const std::lock_guard lock(mutex_);
    choice_ = choice;
    painter_ = painterFor(stderr);
}

Painter Console::painterFor(std::FILE* file) const {
    if (choice_ != ColourChoice::automatic) {
        return Painter(choice_ == ColourChoice::always);
    }
    const char* refused = std::getenv("NO_COLOR");
    return Painter((refused == nullptr || *refused == '\0') && isTerminal(file));
}

void Console::say(std::string_view message) noexcept {
    const std::lock_guard lock(mutex_);
    beginLine(Paint::error, "kel: ");
    endLine(message);
}

void Console::warn(std::string_view message) noexcept {
    const std::lock_guard lock(mutex_);
    if (!isQuiet_) {
        beginLine(Paint::warning, "kel: warning: ");
        endLine(message);
    }
}

Trouble Console::sayOfFile(std::string_view message) noexcept {
    const std::lock_guard lock(mutex_);
    beginLine(Paint::error, "kel: ");
    if (work_ != Work::starting) {
        printName(file_);
        print(work_ == Work::writing ? ": cannot be written: " : ": ");
    }
    endLine(message);
    const bool isOfInput = work_ == Work::reading || work_ == Work::checking;
    return isOfInput ? Trouble::unreadable : Trouble::unwritten;
}

Trouble Console::sayOutOfMemory() noexcept {
    return sayOfFile(isMemoryLimited_ ? "more memory is needed than --max-memory allows"
                                      : "out of memory");
}

void Console::begin(Work work, const std::string& file) {
    const std::lock_guard lock(mutex_);
    file_ = file;
    work_ = work;
}

void Console::hush() {
    const std::lock_guard lock(mutex_);
    erase();
    isHushed_ = true;
}

void Console::drawUntilEnd() {
    std::unique_lock lock(mutex_);
    auto wait = Clock::duration(patience);
    while (!changed_.wait_for(lock, wait, [this] { return isOver_; })) {
        wait = redrawAfter;
        if (isHushed_ || isQuiet_ || work_ == Work::starting) {
            continue;
        }
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start_).count();
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, seconds);
        erase();
        print("kel: ");
        print(wordsFor(work_));
        printName(file_);
        print(", ");
        print({digits, end.ptr});
        print(" s");
        if (const std::optional<unsigned> percentage = readingProgress.percentage()) {
            const auto ends = std::to_chars(digits, digits + sizeof digits, *percentage);
            print(", ");
            print({digits, ends.ptr});
            print(" %");
        }
        std::fflush(stderr);
        isDrawn_ = true;
    }
}

void Console::erase() {
    if (isDrawn_) {
        print("\r\x1b[K");
        std::fflush(stderr);
        isDrawn_ = false;
    }
}

void Console::beginLine(Paint paint, std::string_view lead) {
    erase();
    print(painter_.begin(paint));
    print(lead);
    print(painter_.end());
}

void Console::endLine(std::string_view message) {
    if (!file_.empty() && message.starts_with(file_)) {
        printName(file_); // the line ends of a message are its own, but not those of a name
        message.remove_prefix(file_.size());
    }
    putWithoutControls(message, "\n\t", [this](std::string_view piece) { print(piece); });
    print("\n");
    hasSaidAll_ = std::fflush(stderr) == 0 && std::ferror(stderr) == 0 && hasSaidAll_;
}

void Console::print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void Console::printName(std::string_view name) {
    putWithoutControls(name, {}, [this](std::string_view piece) { print(piece); });
}

} // namespace kel::tool
