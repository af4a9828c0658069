#include "failures/LastResort.h"

#include "failures/Failure.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace kel::tool {

namespace {

std::atomic<bool> memoryRanOut{false};

[[noreturn]] void refuseMemory() {
    memoryRanOut = true;
    throw std::bad_alloc();
}

[[noreturn]] void end() {
    std::fputs(memoryRanOut ? "kel: out of memory\n" : "kel: internal failure\n", stderr);
    std::fflush(stderr);
    std::_Exit(exitStatus(Trouble::unwritten));
}

} // namespace

bool setLastResort() noexcept {
    std::set_new_handler(refuseMemory);
    std::set_terminate(end);
    return true;
}

bool hasMemoryRunOut() {
    return memoryRanOut;
}

} // namespace kel::tool
