#include "support/SmallStack.h"

#include <exception>
#include <stdexcept>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace kel::test {

namespace {

constexpr SIZE_T stackSize = 256 * 1024;

struct Run {
    const std::function<void()>& action;
    std::exception_ptr failure;
};

DWORD WINAPI perform(void* argument) {
    auto* run = static_cast<Run*>(argument);
    try {
        run->action();
    } catch (...) {
        run->failure = std::current_exception();
    }
    return 0;
}

} // namespace

void runInSmallStack(const std::function<void()>& action) {
    Run run{action, nullptr};
    // Without the flag the size is only the committed part, and the stack could grow beyond it.
    const HANDLE thread =
        CreateThread(nullptr, stackSize, perform, &run, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr) {
        throw std::runtime_error("no thread with a small stack can be had");
    }
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    if (run.failure) {
        std::rethrow_exception(run.failure);
    }
}

} // namespace kel::test
