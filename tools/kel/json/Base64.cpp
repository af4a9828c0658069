#include "json/Base64.h"

#include <array>

namespace kel::tool {

namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr uint8_t noDigit = 64;

// not reached: the compiler runs it
constexpr std::array<uint8_t, 256> digitTable() {
    std::array<uint8_t, 256> table{};
    table.fill(noDigit);
    for (size_t i = 0; i < alphabet.size(); ++i) {
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<uint8_t>(i);
    }
    return table;
}

constexpr std::array<uint8_t, 256> base64Digits = digitTable();

} // namespace

std::string toBase64(const std::vector<uint8_t>& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = bytes.size() - i < 3 ? bytes.size() - i : 3;
        uint32_t group = static_cast<uint32_t>(bytes[i]) << 16U;
        group |= count > 1 ? static_cast<uint32_t>(bytes[i + 1]) << 8U : 0U;
        group |= count > 2 ? static_cast<uint32_t>(bytes[i + 2]) : 0U;
        for (size_t digit = 0; digit < 4; ++digit) {
            text += digit <= count ? alphabet[(group >> (18 - 6 * digit)) & 0x3FU] : '=';
        }
    }
    return text;
}

std::optional<std::vector<uint8_t>> fromBase64(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    std::vector<uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (size_t i = 0; i < text.size(); i += 4) {
        const size_t padded = i + 4 == text.size() ? padding : 0;
        uint32_t group = 0;
        for (size_t digit = 0; digit < 4; ++digit) {
            const uint8_t value =
                digit < 4 - padded ? base64Digits[static_cast<unsigned char>(text[i + digit])] : 0;
            if (value == noDigit) {
                return std::nullopt;
            }
            group = group << 6U | value;
        }
        for (size_t byte = 0; byte < 3 - padded; ++byte) {
            bytes.push_back(static_cast<uint8_t>(group >> (16 - 8 * byte)));
        }
        if ((group & ((1U << (8 * padded)) - 1)) != 0) {
            return std::nullopt; // the bits that the padding leaves out must be zero
        }
    }
    return bytes;
}

} // namespace kel::tool
