/// \file
/// BufferedInputStream: a read-ahead window as an input stream.
#pragma once

#include "streams/BufferedInput.h"

namespace kel {

/// Lets stream operations and direct use of the window alternate on the same bytes.
class BufferedInputStream final : public JInputStream {
public:
    /// Shares the stream, which is not null.
    explicit BufferedInputStream(const JPointer<JInputStream>& stream) : input_(stream) {}

    /// Returns the window.
    BufferedInput& input() { return input_; }

    int32_t JRead() override { return input_.next(); }
    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override {
        if (buffer == nullptr) {
            return JInputStream::JRead(buffer, offset, count);
        }
        return count < 1 ? 0
                         : static_cast<int32_t>(
                               input_.read(buffer + offset, static_cast<std::size_t>(count)));
    }
    void JClose() override { input_.stream().JClose(); }
    int64_t JTell() override { return input_.position(); }
    void JSeek(int64_t position) override { input_.seek(position); }

private:
    BufferedInput input_;
};

} // namespace kel
