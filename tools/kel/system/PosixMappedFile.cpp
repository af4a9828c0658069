// Mapped files of POSIX systems.

#include "failures/Failure.h"
#include "path/PathText.h"
#include "system/MappedFile.h"
#include "system/System.h"

#include <csignal>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kel::tool {

namespace {

/// What the signal handler needs: the file that was mapped last, and the message about it.
std::string_view guarded;
std::string cutShort;

/// Ends the process after the use of a byte that the file has lost.
// not reached: it ends the process without its counts
extern "C" void endByMissingByte(int signal, siginfo_t* info, void* /*context*/) {
    const auto* place = static_cast<const char*>(info->si_addr);
    if (place < guarded.data() || place >= guarded.data() + guarded.size()) {
        std::signal(signal, SIG_DFL); // happens again, for another reason
        return;
    }
    removeTemporary();
    static_cast<void>(!write(STDERR_FILENO, cutShort.data(), cutShort.size()));
    _exit(exitStatus(Trouble::unreadable));
}

/// Makes the use of a missing byte of the file end the process.
void guard(std::string_view bytes, const std::string& name) {
    cutShort = "kel: " + withoutControls(name) + ": the file was cut short while it was read\n";
    guarded = bytes;
    struct sigaction action = {};
    action.sa_sigaction = endByMissingByte;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGBUS, &action, nullptr);
}

size_t pageSize() {
    static const auto size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

} // namespace

std::unique_ptr<MappedFile> MappedFile::of(std::FILE* file, const std::string& name) {
    struct stat facts = {};
    // not reached: an open file has facts, and its size fits
    if (fstat(fileno(file), &facts) != 0 || !S_ISREG(facts.st_mode) ||
        facts.st_size < static_cast<off_t>(smallestMapping) ||
        static_cast<uintmax_t>(facts.st_size) > std::numeric_limits<size_t>::max()) {
        return nullptr;
    }
    const auto size = static_cast<size_t>(facts.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fileno(file), 0);
    // not reached: no test limits the addresses of the process
    if (bytes == MAP_FAILED) {
        return nullptr;
    }
    try {
        std::unique_ptr<MappedFile> mapped(new MappedFile({static_cast<char*>(bytes), size}));
        guard(mapped->bytes(), name);
        return mapped;
    } catch (...) {
        munmap(bytes, size);
        throw;
    }
}

MappedFile::~MappedFile() {
    munmap(const_cast<char*>(bytes_.data()), bytes_.size());
}

void MappedFile::release(size_t begin, size_t end) const {
    begin -= begin % pageSize();
    end -= end % pageSize();
    if (begin < end) {
        // The bytes are as valid if the system keeps them, so the result does not matter.
        madvise(const_cast<char*>(bytes_.data()) + begin, end - begin, MADV_DONTNEED);
    }
}

} // namespace kel::tool
