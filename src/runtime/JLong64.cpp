#include "runtime/JLong64.h"

namespace {

std::string atLeastEightDigits(uint32_t word) {
    std::string digits = std::to_string(word);
    return digits.size() < 8 ? std::string(8 - digits.size(), '0') + digits : digits;
}

} // namespace

std::string JLong64::toDecimalText() const {
    return atLeastEightDigits(high) + atLeastEightDigits(low);
}
