// The tool's operating-system interface for POSIX systems.

#include "System.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kel::tool {

namespace {

constexpr int endingSignals[] = {SIGHUP, SIGINT, SIGTERM};

/// What the signal handler has to remove; empty for nothing. Written only with the signals blocked.
char temporaryName[4096];

/// Removes the temporary file and ends the process by the signal, as if it had not been handled.
extern "C" void endBySignal(int signal) {
    if (temporaryName[0] != '\0') {
        unlink(temporaryName);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Holds the ending signals back for as long as it lives.
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

/// Signals that the process was started to ignore (nohup) stay ignored.
void handleEndingSignals() {
    for (const int signal : endingSignals) {
        if (std::signal(signal, endBySignal) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

} // namespace

void ignoreClosedPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool isTerminal(std::FILE* file) {
    return isatty(fileno(file)) == 1;
}

bool mayWrite(const std::string& name) {
    return access(name.c_str(), W_OK) == 0 || errno == ENOENT;
}

std::FILE* openMemoryToRead(const char* bytes, size_t size) {
    // Opened for reading only, the bytes are not touched.
    return fmemopen(const_cast<char*>(bytes), size, "rb");
}

std::FILE* openMemoryToWrite(char* buffer, size_t size) {
    return fmemopen(buffer, size, "wb");
}

std::FILE* createTemporary(const std::string& folder, std::string& name) {
    constexpr int attempts = 1000;
    const std::string prefix =
        (folder.empty() ? "" : folder + '/') + ".kel-" + std::to_string(getpid()) + '-';
    for (int attempt = 0; attempt < attempts; ++attempt) {
        name = prefix + std::to_string(attempt) + ".tmp";
        if (name.size() >= sizeof temporaryName) {
            errno = ENAMETOOLONG;
            return nullptr;
        }
        const BlockedSignals blocked;
        const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            std::memcpy(temporaryName, name.c_str(), name.size() + 1);
            handleEndingSignals();
            return fdopen(descriptor, "wb");
        }
        if (errno != EEXIST) {
            return nullptr;
        }
    }
    return nullptr;
}

void keepTemporary() {
    const BlockedSignals blocked;
    temporaryName[0] = '\0';
}

void copyPermissions(std::FILE* file, const std::string& from) {
    struct stat existing = {};
    if (stat(from.c_str(), &existing) != 0) {
        return;
    }
    // Only root may give files away; for everybody else the new file is simply their own.
    if (fchown(fileno(file), existing.st_uid, existing.st_gid) != 0) {
        errno = 0;
    }
    if (fchmod(fileno(file), existing.st_mode & 07777U) != 0) {
        errno = 0;
    }
}

bool synchronise(std::FILE* file) {
    return fsync(fileno(file)) == 0;
}

void synchroniseFolder(const std::string& folder) {
    const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        fsync(descriptor); // not every file system can; the file itself is safe already
        close(descriptor);
    }
}

} // namespace kel::tool
