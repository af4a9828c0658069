#include "serial/KELInputStream_Impl.h"

#include "serial/StreamErrors.h"
#include "values/KEL_Impl.h"

#include <new>

using kel::withMediumErrors;

KEL* KELInputStream_Impl::read() {
    try {
        return withMediumErrors([&] { return readTree(); });
    } catch (const std::bad_alloc&) {
        throw new KELOutOfMemoryException_Impl("Out of memory!");
    } catch (const JOutOfMemoryException&) {
        throw new KELOutOfMemoryException_Impl("Out of memory!");
    }
}

int32_t KELInputStream_Impl::JRead() {
    return withMediumErrors([&] {
        input().clearMark(); // a token's, or the window would keep every byte from there on
        return input().next();
    });
}

int32_t KELInputStream_Impl::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    return withMediumErrors([&] {
        if (buffer == nullptr) {
            return JDataInput::JRead(buffer, offset, count);
        }
        input().clearMark();
        return count < 1 ? 0
                         : static_cast<int32_t>(
                               input().read(buffer + offset, static_cast<size_t>(count)));
    });
}

void KELInputStream_Impl::JClose() {
    withMediumErrors([&] {
        // A host that goes on with its own handle finds it behind the last byte used.
        input().sync();
        input().stream().JClose();
    });
}

int64_t KELInputStream_Impl::JTell() {
    return input().position();
}

void KELInputStream_Impl::JSeek(int64_t position) {
    withMediumErrors([&] { input().seek(position); });
}

void KELInputStream_Impl::destroy() {
    const JPointer<KELInputStream_Impl> last(this); // released however closing ends
    JClose();
}
