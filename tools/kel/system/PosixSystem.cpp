// The tool's operating-system interface for POSIX systems.

#include "system/Progress.h"
#include "system/System.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace kel::tool {

namespace {

constexpr int endingSignals[] = {SIGHUP, SIGINT, SIGTERM};

/// The file that the signal handler has to remove, or empty. It is written only with the signals
/// blocked.
char temporaryName[4096];

/// Removes the temporary file and ends the process by the signal, as if it had not been handled.
// not reached: it ends the process without its counts
extern "C" void endBySignal(int signal) {
    removeTemporary();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Blocks the ending signals as long as it lives.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : endingSignals) {
            sigaddset(&ending, signal);
        }
        sigprocmask(SIG_BLOCK, &ending, &before_);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

/// Handles the ending signals. Those that the process was started to ignore (nohup) remain ignored.
void handleEndingSignals() {
    for (const int signal : endingSignals) {
        if (std::signal(signal, endBySignal) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

/// Opens a standard descriptor that is closed, in a mode that makes its use fail.
void occupyClosed(int descriptor, int mode) {
    if (fcntl(descriptor, F_GETFD) < 0) {
        open("/dev/null", mode); // takes the lowest number, since those below are open
    }
}

/// The bytes of a file to read from. They are not copied.
class ReadBytes {
public:
    ReadBytes(std::string_view bytes, std::string_view rest) : bytes_(bytes), rest_(rest) {
        readingProgress.begin(size());
    }
    ReadBytes(const ReadBytes&) = delete;
    ReadBytes& operator=(const ReadBytes&) = delete;
    ~ReadBytes() { readingProgress.end(); }

    static ssize_t read(void* cookie, char* buffer, size_t size) {
        auto& self = *static_cast<ReadBytes*>(cookie);
        const bool isInRest = self.at_ >= self.bytes_.size();
        const std::string_view next = isInRest ? self.rest_.substr(self.at_ - self.bytes_.size())
                                               : self.bytes_.substr(self.at_);
        const size_t count = next.copy(buffer, size);
        self.at_ += count;
        readingProgress.reach(self.at_);
        return static_cast<ssize_t>(count);
    }

    static int seek(void* cookie, off64_t* offset, int from) {
        auto& self = *static_cast<ReadBytes*>(cookie);
        const auto size = static_cast<off64_t>(self.size());
        // not reached: nobody seeks from the end
        const off64_t base = from == SEEK_SET   ? 0
                             : from == SEEK_CUR ? static_cast<off64_t>(self.at_)
                                                : size;
        // not reached: the library seeks to places that it has read
        if (*offset < -base || *offset > size - base) {
            errno = EINVAL;
            return -1;
        }
        *offset += base;
        self.at_ = static_cast<size_t>(*offset);
        return 0;
    }

    static int close(void* cookie) {
        delete static_cast<ReadBytes*>(cookie);
        return 0;
    }

private:
    size_t size() const { return bytes_.size() + rest_.size(); }

    std::string_view bytes_;
    std::string_view rest_; ///< what follows them
    size_t at_ = 0;
};

/// Returns the command that shows pages, for the shell.
const char* pagerCommand() {
    const char* named = std::getenv("PAGER");
    if (named != nullptr && *named != '\0') {
        return named;
    }
    // Short output stays on the screen without a key, and colours are passed on.
    return "if command -v less >/dev/null; then LESS=${LESS-FRX} exec less; else exec cat; fi";
}

} // namespace

std::vector<std::string> argumentsOf(int argc, const char* const* argv) {
    return {argv, argv + argc};
}

void prepareProcess() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    occupyClosed(STDIN_FILENO, O_WRONLY);
    occupyClosed(STDOUT_FILENO, O_RDONLY);
    occupyClosed(STDERR_FILENO, O_RDONLY);
}

bool limitMemory(uint64_t bytes) {
    rlimit limit = {};
    // not reached: every process has this limit
    if (getrlimit(RLIMIT_DATA, &limit) != 0) {
        return false;
    }
    // Another limit, which the process was started with, remains in force.
    if (bytes < limit.rlim_cur) {
        limit.rlim_cur = static_cast<rlim_t>(bytes);
    }
    return setrlimit(RLIMIT_DATA, &limit) == 0;
}

bool isTerminal(std::FILE* file) {
    return isatty(fileno(file)) == 1;
}

bool isUnread() {
    pollfd output = {STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

// The user's own command for pages is one for the shell, as in other programs.
// NOLINTNEXTLINE(cert-env33-c)
Pager::Pager() : file_(popen(pagerCommand(), "we")) {
    if (file_ != nullptr) {
        std::signal(SIGINT, SIG_IGN); // the person interrupts the pager's search, not the output
    }
}

Pager::~Pager() {
    finish();
}

bool Pager::finish() {
    if (file_ == nullptr) {
        return false;
    }
    constexpr int cannotRun = 126; // of the shell, for a program that is not executable
    constexpr int notFound = 127;
    const int status = pclose(std::exchange(file_, nullptr));
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    return status != -1 && code != cannotRun && code != notFound;
}

std::filesystem::path pathOf(const std::string& name) {
    return name;
}

std::FILE* openToRead(const std::string& name) {
    return std::fopen(name.c_str(), "rb");
}

std::FILE* openToWrite(const std::string& name) {
    return std::fopen(name.c_str(), "wb");
}

bool seekTo(std::FILE* file, uint64_t offset) {
    // not reached: offsets in a file have 63 bits
    if (offset > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) {
        errno = EFBIG;
        return false;
    }
    return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
}

int64_t offsetIn(std::FILE* file) {
    return ftello(file);
}

bool mayWrite(const std::filesystem::path& path) {
    return access(path.c_str(), W_OK) == 0 || errno == ENOENT;
}

MemoryToRead::MemoryToRead(std::string_view bytes, std::string_view rest) : file_(nullptr) {
    auto source = std::make_unique<ReadBytes>(bytes, rest);
    cookie_io_functions_t functions = {};
    functions.read = &ReadBytes::read;
    functions.seek = &ReadBytes::seek;
    functions.close = &ReadBytes::close;
    file_ = fopencookie(source.get(), "rb", functions);
    if (file_ == nullptr) {
        throw std::system_error(errno, std::generic_category());
    }
    static_cast<void>(source.release()); // belongs to the file now
}

MemoryToRead::~MemoryToRead() {
    std::fclose(file_);
}

struct MemoryToWrite::Storage {
    std::unique_ptr<char[]> bytes;
    std::FILE* file;
};

MemoryToWrite::MemoryToWrite(size_t limit)
    : storage_(new Storage{std::unique_ptr<char[]>(new char[limit]), nullptr}) {
    storage_->file = fmemopen(storage_->bytes.get(), limit, "wb");
    if (storage_->file == nullptr) {
        throw std::system_error(errno, std::generic_category());
    }
}

MemoryToWrite::~MemoryToWrite() {
    if (storage_->file != nullptr) {
        std::fclose(storage_->file);
    }
}

std::FILE* MemoryToWrite::file() {
    return storage_->file;
}

std::optional<std::string> MemoryToWrite::take() {
    // not reached: a write beyond the limit has failed before
    const bool isWritten = std::fflush(storage_->file) == 0 && std::ferror(storage_->file) == 0;
    const int64_t size = offsetIn(storage_->file);
    const bool isClosed = std::fclose(storage_->file) == 0;
    storage_->file = nullptr;
    // not reached: a write beyond the limit has failed before
    if (!isWritten || !isClosed || size < 0) {
        return std::nullopt;
    }
    return std::string(storage_->bytes.get(), static_cast<size_t>(size));
}

std::FILE* createTemporary(const std::filesystem::path& folder, std::filesystem::path& path) {
    constexpr int attempts = 1000;
    const std::string prefix = ".kel-" + std::to_string(getpid()) + '-';
    for (int attempt = 0; attempt < attempts; ++attempt) {
        path = folder / (prefix + std::to_string(attempt) + ".tmp");
        const std::string& name = path.native();
        // not reached: no test has a name of nearly the greatest length
        if (name.size() >= sizeof temporaryName) {
            errno = ENAMETOOLONG;
            return nullptr;
        }
        const BlockedSignals blocked;
        const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            std::FILE* file = fdopen(descriptor, "wb");
            if (file == nullptr) {
                const int reason = errno;
                close(descriptor);
                unlink(name.c_str());
                errno = reason;
                return nullptr;
            }
            std::memcpy(temporaryName, name.c_str(), name.size() + 1);
            handleEndingSignals();
            return file;
        }
        if (errno != EEXIST) {
            return nullptr;
        }
    }
    return nullptr;
}

// not reached: whoever calls it ends the process without its counts
void removeTemporary() {
    if (temporaryName[0] != '\0') {
        unlink(temporaryName);
    }
}

void keepTemporary() {
    const BlockedSignals blocked;
    temporaryName[0] = '\0';
}

void copyPermissions(std::FILE* file, const std::filesystem::path& from) {
    struct stat existing = {};
    if (stat(from.c_str(), &existing) != 0) {
        return;
    }
    // Data is not executed, so the bits to run it as another user or group are not copied.
    mode_t mode = existing.st_mode & 0777U;
    // Only root can give files away; for everybody else the new file is simply their own. If it
    // cannot belong to the same group, the permissions of that group must not apply to another
    // group.
    const int descriptor = fileno(file);
    if (fchown(descriptor, existing.st_uid, existing.st_gid) != 0 &&
        fchown(descriptor, static_cast<uid_t>(-1), existing.st_gid) != 0) {
        mode &= ~mode_t{070};
    }
    fchmod(descriptor, mode); // if this fails, the file keeps the usual permissions
    errno = 0;
}

bool synchronise(std::FILE* file) {
    return fsync(fileno(file)) == 0;
}

std::error_code replaceFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code failure;
    std::filesystem::rename(from, to, failure);
    return failure;
}

std::error_code synchroniseFolder(const std::filesystem::path& folder) {
    const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return {}; // a folder that may not be read can still be written in
    }
    // not reached: the folders of the tests can be synchronised
    const bool isSafe = fsync(descriptor) == 0 || errno == EINVAL; // EINVAL: it cannot be requested
    const int reason = errno;
    close(descriptor);
    return isSafe ? std::error_code() : std::error_code(reason, std::generic_category());
}

} // namespace kel::tool
