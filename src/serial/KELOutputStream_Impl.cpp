#include "serial/KELOutputStream_Impl.h"

#include "serial/StreamErrors.h"

using kel::withMediumErrors;

void KELOutputStream_Impl::write(KEL* value) {
    kel::withStreamErrors([&] { writeTree(value); });
}

void KELOutputStream_Impl::JWrite(int32_t byte) {
    withMediumErrors([&] { sink_->JWrite(byte); });
}

void KELOutputStream_Impl::JWrite(const uint8_t* buffer, int32_t offset, int32_t count) {
    withMediumErrors([&] { sink_->JWrite(buffer, offset, count); });
}

void KELOutputStream_Impl::JFlush() {
    withMediumErrors([&] { sink_->JFlush(); });
}

void KELOutputStream_Impl::JClose() {
    withMediumErrors([&] { sink_->JClose(); });
}

int64_t KELOutputStream_Impl::JTell() {
    return withMediumErrors([&] { return sink_->JTell(); });
}

void KELOutputStream_Impl::JSeek(int64_t position) {
    withMediumErrors([&] { sink_->JSeek(position); });
}

void KELOutputStream_Impl::destroy() {
    const JPointer<KELOutputStream_Impl> last(this); // released even if closing fails
    JClose();
}
