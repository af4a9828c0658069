/// \file
/// MemoryWatch: whether the memory of this process grows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace soak {

/// The memory of this process at one time, in bytes.
struct Memory {
    std::size_t resident = 0; ///< pages, of malloc and of the library's slabs
    std::size_t inUse = 0;    ///< blocks of malloc that are not freed

    static Memory now() {
        std::size_t total = 0;
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> total >> pages;
        return {pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), mallinfo2().uordblks};
    }
};

/// Compares the memory between rounds of work in two spans of the run: from a fifth to two fifths
/// of it, when everything has been used once, and the last fifth.
class MemoryWatch {
public:
    /// Notes the memory. \param part of the run that is over, from 0 to 1
    void note(double part) {
        last = Memory::now();
        Span* span = part >= 0.8 ? &end_ : part >= 0.2 && part < 0.4 ? &plateau_ : nullptr;
        if (span != nullptr) {
            span->resident = std::max(span->resident, last.resident);
            span->inUse = span->isNoted ? std::min(span->inUse, last.inUse) : last.inUse;
            span->isNoted = true;
        }
    }

    /// Prints the memory of both spans. \return whether it did not grow
    bool isFlat() const {
        const bool isResidentFlat =
            end_.resident <= plateau_.resident + plateau_.resident / 20 + (std::size_t{2} << 20);
        const bool isInUseFlat = end_.inUse <= plateau_.inUse + (std::size_t{16} << 10);
        std::printf("resident at most: %zu KiB on the plateau, %zu KiB at the end: %s\n",
                    plateau_.resident / 1024, end_.resident / 1024,
                    isResidentFlat ? "flat" : "it grows");
        std::printf("in use of malloc at least: %zu bytes on the plateau, %zu at the end: %s\n",
                    plateau_.inUse, end_.inUse, isInUseFlat ? "flat" : "it grows");
        // On a machine that is very busy, no round may end in one of the spans.
        return !plateau_.isNoted || !end_.isNoted || (isResidentFlat && isInUseFlat);
    }

    Memory last;

private:
    struct Span : Memory {
        bool isNoted = false;
    };

    Span plateau_;
    Span end_;
};

} // namespace soak
