/// \file
/// TextBuffer: passes text on in large pieces.
#pragma once

#include <algorithm>
#include <functional>
#include <string_view>
#include <vector>

namespace kel::tool {

/// Collects characters and passes them on whenever there are many. The last ones are passed on by
/// flush.
class TextBuffer {
public:
    using PassOn = std::function<void(std::string_view)>;

    explicit TextBuffer(PassOn passOn) : passOn_(std::move(passOn)), room_(size) {}

    void put(char c) {
        makeRoom(1);
        room_[used_++] = c;
    }
    void put(std::string_view text) {
        if (text.size() > size) {
            flush();
            passOn_(text);
            return;
        }
        makeRoom(text.size());
        std::copy(text.begin(), text.end(), room_.data() + used_);
        used_ += text.size();
    }
    /// Puts a text in quotes.
    void putQuoted(std::string_view text) {
        if (text.size() > size - 2) {
            put('"');
            put(text);
            put('"');
            return;
        }
        makeRoom(text.size() + 2);
        char* at = room_.data() + used_;
        *at++ = '"';
        at = std::copy(text.begin(), text.end(), at);
        *at = '"';
        used_ += text.size() + 2;
    }

    void flush() {
        passOn_({room_.data(), used_});
        used_ = 0;
    }

private:
    static constexpr size_t size = 64 * 1024;

    void makeRoom(size_t count) {
        if (count > size - used_) {
            flush();
        }
    }

    PassOn passOn_;
    std::vector<char> room_;
    size_t used_ = 0;
};

} // namespace kel::tool
