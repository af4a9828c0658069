/// \file
/// Script: an input of the fuzzer, read as choices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kel::fuzz {

/// Reads the bytes of an input from the front. An input that has ended yields zeros, so every input
/// is a whole script.
class Script {
public:
    Script(const uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool isAtEnd() const { return rest_.empty(); }

    /// Returns the next byte.
    uint8_t byte() {
        if (rest_.empty()) {
            return 0;
        }
        const auto next = static_cast<uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return next;
    }

    /// Returns a number from 0 to below limit, which is from 1 to 256.
    int below(int limit) { return byte() % limit; }

    /// Returns one of the first 65536 numbers.
    uint16_t word() {
        const uint8_t low = byte();
        return static_cast<uint16_t>(low | byte() << 8);
    }

    /// Returns a number of bytes, or all that are left if they are fewer.
    std::string bytes(std::size_t count) {
        const std::string taken(rest_.substr(0, count));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    /// Returns all bytes that are left.
    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

} // namespace kel::fuzz
