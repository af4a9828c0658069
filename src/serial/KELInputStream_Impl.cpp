#include "serial/KELInputStream_Impl.h"

#include "values/KEL_Impl.h"

KEL* KELInputStream_Impl::read() {
    return useWhole([&] { return readTree(); });
}

int32_t KELInputStream_Impl::JRead() {
    return use([&] {
        input().clearMark(); // a token's mark would make the window keep all bytes after it
        return input().next();
    });
}

int32_t KELInputStream_Impl::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    return use([&] {
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
    use([&] {
        // A host that continues with its own handle continues just after the last byte consumed.
        input().sync();
        input().stream().JClose();
        input().discard(); // a closed stream is at its end
    });
}

int64_t KELInputStream_Impl::JTell() {
    return input().position();
}

void KELInputStream_Impl::JSeek(int64_t position) {
    use([&] { input().seek(position); });
}

void KELInputStream_Impl::destroy() {
    const JPointer<KELInputStream_Impl> last(this); // released even if closing fails
    JClose();
}
