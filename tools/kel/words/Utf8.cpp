#include "words/Utf8.h"

#include <algorithm>

namespace kel::tool {

namespace {

/// The length of a sequence and the range of its second byte, by its first byte. The length is 0
/// for bytes that cannot begin a sequence.
struct Lead {
    size_t length;
    unsigned char secondLow;
    unsigned char secondHigh;
};

constexpr Lead leadOf(unsigned char first) {
    if (first < 0x80) {
        return {1, 0x80, 0xBF};
    }
    if (first < 0xC2 || first > 0xF4) {
        return {0, 0, 0};
    }
    if (first < 0xE0) {
        return {2, 0x80, 0xBF};
    }
    if (first < 0xF0) {
        return {3, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF)};
    }
    return {4, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
}

bool isBetween(char c, unsigned char low, unsigned char high) {
    const auto byte = static_cast<unsigned char>(c);
    return low <= byte && byte <= high;
}

} // namespace

size_t utf8SequenceLength(std::string_view bytes) {
    // not reached: no caller has an empty text
    if (bytes.empty()) {
        return 0;
    }
    const Lead lead = leadOf(static_cast<unsigned char>(bytes[0]));
    if (bytes.size() < lead.length) {
        return 0;
    }
    for (size_t i = 1; i < lead.length; ++i) {
        const bool isSecond = i == 1;
        if (!isBetween(bytes[i], isSecond ? lead.secondLow : 0x80,
                       isSecond ? lead.secondHigh : 0xBF)) {
            return 0;
        }
    }
    return lead.length;
}

bool isUtf8(std::string_view bytes) {
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    auto at = std::find_if_not(bytes.begin(), bytes.end(), isAscii);
    while (at != bytes.end()) {
        const size_t length = utf8SequenceLength(std::string_view(at, bytes.end()));
        if (length == 0) {
            return false;
        }
        at = std::find_if_not(at + static_cast<std::ptrdiff_t>(length), bytes.end(), isAscii);
    }
    return true;
}

} // namespace kel::tool
