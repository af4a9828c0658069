/// \file
/// FailingSink: an output stream that fails at a moment that the test sets.
#pragma once

#include "streams/JOutputStream.h"

#include <cstdint>
#include <kel/JException.h>
#include <string>

/// Keeps the bytes that it receives. The write after the first `allowed` ones fails. With
/// `forGood`, all later ones fail too. It has no positions, like a pipe.
class FailingSink : public JOutputStream {
public:
    int64_t allowed = INT64_MAX;
    bool forGood = false;
    std::string bytes;
    int writes = 0;

    void JWrite(int32_t byte) override {
        const auto low = static_cast<uint8_t>(byte);
        JWrite(&low, 0, 1);
    }

    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override {
        if (writes++ == allowed || (forGood && writes > allowed)) {
            throw JIOException("FailingSink failed.");
        }
        bytes.append(reinterpret_cast<const char*>(buffer) + offset, static_cast<size_t>(count));
    }

    void JFlush() override {}
    void JClose() override {}
    int64_t JTell() override { return -1; }
    void JSeek(int64_t) override { throw JIOException("FailingSink cannot seek."); }
};
