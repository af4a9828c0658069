#include "values/VariableName.h"

namespace kel {

namespace {

/// Returns the size of the block for a name of this length.
constexpr std::size_t blockSize(std::size_t length) {
    return sizeof length + length + 1;
}

} // namespace

std::string_view VariableName::longView() const {
    const char* from = block();
    std::size_t length = 0;
    std::memcpy(&length, from, sizeof length);
    return {from + sizeof length, length};
}

void VariableName::storeLong(std::string_view text) {
    const std::size_t length = text.size();
    char* block = Allocator<char>().allocate(blockSize(length));
    std::memcpy(block, &length, sizeof length);
    std::memcpy(block + sizeof length, text.data(), length);
    block[sizeof length + length] = '\0';
    std::memcpy(bytes_ + addressAt, &block, sizeof block);
    bytes_[last] = longMark;
}

void VariableName::freeLong() {
    Allocator<char>().deallocate(block(), blockSize(longView().size()));
}

bool VariableName::isBeforeText(const NameKey& key) const {
    const uint64_t high = orderOf(word(0));
    return high >> 8 != key.high_ >> 8 ? high < key.high_ // the first seven bytes
                                       : view() < key.text();
}

bool VariableName::hasLongText(const NameKey& key) const {
    const bool startsAlike = orderOf(word(0)) >> 8 == key.high_ >> 8;
    return startsAlike && isLong() && longView() == key.text();
}

} // namespace kel
