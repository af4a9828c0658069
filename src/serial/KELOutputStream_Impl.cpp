#include "serial/KELOutputStream_Impl.h"

void KELOutputStream_Impl::write(KEL* value) {
    const kel::StreamUse alone(*this, inUse_);
    kel::withStreamErrors([&] { writeTree(value); });
}

void KELOutputStream_Impl::JWrite(int32_t byte) {
    use([&] { sink_->JWrite(byte); });
}

void KELOutputStream_Impl::JWrite(const uint8_t* buffer, int32_t offset, int32_t count) {
    use([&] { sink_->JWrite(buffer, offset, count); });
}

void KELOutputStream_Impl::JFlush() {
    use([&] { sink_->JFlush(); });
}

void KELOutputStream_Impl::JClose() {
    use([&] { sink_->JClose(); });
}

int64_t KELOutputStream_Impl::JTell() {
    return use([&] { return sink_->JTell(); });
}

void KELOutputStream_Impl::JSeek(int64_t position) {
    use([&] { sink_->JSeek(position); });
}

void KELOutputStream_Impl::destroy() {
    const JPointer<KELOutputStream_Impl> last(this); // released even if closing fails
    JClose();
}
