#include "support/SmallStack.h"

#include <exception>
#include <pthread.h>
#include <stdexcept>

namespace kel::test {

namespace {

constexpr std::size_t stackSize = 256 * 1024;

struct Run {
    const std::function<void()>& action;
    std::exception_ptr failure;
};

void* perform(void* argument) {
    auto* run = static_cast<Run*>(argument);
    try {
        run->action();
    } catch (...) {
        run->failure = std::current_exception();
    }
    return nullptr;
}

} // namespace

void runInSmallStack(const std::function<void()>& action) {
    pthread_attr_t attributes;
    pthread_t thread;
    Run run{action, nullptr};
    pthread_attr_init(&attributes);
    const bool started = pthread_attr_setstacksize(&attributes, stackSize) == 0 &&
                         pthread_create(&thread, &attributes, perform, &run) == 0;
    pthread_attr_destroy(&attributes);
    if (!started) {
        throw std::runtime_error("no thread with a small stack can be had");
    }
    pthread_join(thread, nullptr);
    if (run.failure) {
        std::rethrow_exception(run.failure);
    }
}

} // namespace kel::test
