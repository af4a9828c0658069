/// \file
/// VariableName: the name of a struct's variable, in 16 bytes.
#pragma once

#include "platform/ByteSwap.h"
#include "runtime/Storage.h"

#include <bit>
#include <cstring>
#include <string_view>

namespace kel {

/// Returns true for null and for the empty text. No variable has such a name. Operations ignore it,
/// and lookups return null, false or 0.
inline bool isNoName(const char* name) {
    return name == nullptr || *name == '\0';
}

/// Converts between eight bytes as memory has them and a number that compares as they do.
inline uint64_t orderOf(uint64_t bytes) {
    return std::endian::native == std::endian::big ? bytes : platform::swapBytes(bytes);
}

/// A name that is searched for, prepared for comparisons with many stored names.
///
/// The image of a name of at most 15 bytes is its bytes, filled up with zeros; the last byte counts
/// the zeros before it. Names contain no NUL, so two such images compare as the names do, and two
/// numbers decide.
class NameKey {
public:
    /// Refers to text, which must outlive the key.
    explicit NameKey(std::string_view text) : text_(text), high_(firstEight(text)) {
        if (isShort()) {
            const std::size_t zeros = longestShort - text.size();
            low_ = text.size() > 8 ? firstEight(text.substr(8)) | zeros : zeros;
        }
    }

    std::string_view text() const { return text_; }

    /// Returns whether the name fits into its image.
    bool isShort() const { return text_.size() <= longestShort; }

private:
    friend class VariableName;

    static constexpr std::size_t longestShort = 15;

    template <class Number> static uint64_t load(const char* from) {
        Number bytes = 0;
        std::memcpy(&bytes, from, sizeof bytes);
        return orderOf(bytes) >>
               (std::endian::native == std::endian::big ? 0 : 64 - 8 * sizeof bytes);
    }

    /// Returns the first eight bytes of a text, filled up with zeros, as a number for comparing.
    /// A text of four to seven bytes is loaded in two pieces that overlap.
    static uint64_t firstEight(std::string_view text) {
        const char* from = text.data();
        const std::size_t size = text.size();
        if (size >= 8) {
            return load<uint64_t>(from);
        }
        if (size >= 4) {
            return load<uint32_t>(from) << 32 | load<uint32_t>(from + size - 4) << 8 * (8 - size);
        }
        uint64_t number = 0;
        for (const char byte : text) {
            number = number << 8 | static_cast<uint8_t>(byte);
        }
        return size == 0 ? 0 : number << 8 * (8 - size);
    }

    std::string_view text_;
    uint64_t high_;    ///< the first eight bytes of the image or of a longer name
    uint64_t low_ = 0; ///< the others of the image
};

/// A name as a struct keeps it. A name of at most 15 bytes is stored as its image. A longer one is
/// stored in one block of its own; then the 16 bytes hold its first seven bytes, the address of the
/// block and a mark. So every name shows its first seven bytes in place. Either way, a NUL follows
/// the name.
///
/// This is a plain handle: copying it copies the 16 bytes, and whoever keeps the name frees it
/// once.
class VariableName {
public:
    VariableName() = default;

    /// Makes a copy of the name.
    /// \throws JOutOfMemoryException "Out of memory!"
    explicit VariableName(const NameKey& key) {
        const uint64_t image[] = {orderOf(key.high_), orderOf(key.low_)};
        std::memcpy(bytes_, image, sizeof bytes_);
        if (!key.isShort()) {
            storeLong(key.text());
        }
    }

    /// Frees the block of a long name.
    void free() {
        if (isLong()) {
            freeLong();
        }
    }

    /// Returns the name, which a NUL follows. It points into this object if the name is short.
    std::string_view view() const {
        return isLong() ? longView()
                        : std::string_view(reinterpret_cast<const char*>(bytes_),
                                           NameKey::longestShort - bytes_[last]);
    }

    /// Returns whether this name comes before the key in the order of their bytes.
    bool isBefore(const NameKey& key) const {
        if (isLong() || !key.isShort()) {
            return isBeforeText(key);
        }
        const uint64_t high = orderOf(word(0));
        const bool isLowBefore = orderOf(word(8)) < key.low_;
        return (high < key.high_) | ((high == key.high_) & isLowBefore);
    }

    /// Returns whether this is the key's name.
    bool equals(const NameKey& key) const {
        return key.isShort() ? hasImageOf(key) : hasLongText(key);
    }

    /// Does the same for a short key, without a branch.
    bool hasImageOf(const NameKey& key) const {
        return ((word(0) ^ orderOf(key.high_)) | (word(8) ^ orderOf(key.low_))) == 0;
    }

private:
    static constexpr std::size_t last = 15;        ///< the place of the count, or of the mark
    static constexpr std::size_t addressAt = 7;    ///< the place of a long name's address
    static constexpr uint8_t longMark = UINT8_MAX; ///< in place of the count of zeros

    /// Returns eight of the bytes as memory has them.
    uint64_t word(std::size_t from) const {
        uint64_t number = 0;
        std::memcpy(&number, bytes_ + from, sizeof number);
        return number;
    }

    bool isLong() const { return bytes_[last] == longMark; }

    /// Returns the block of a long name, which holds its length, its bytes and a NUL.
    char* block() const {
        char* block = nullptr;
        std::memcpy(&block, bytes_ + addressAt, sizeof block);
        return block;
    }

    std::string_view longView() const;

    /// Stores the name in a block.
    void storeLong(std::string_view text);
    void freeLong();

    /// Does the work of isBefore where one of the two is long.
    bool isBeforeText(const NameKey& key) const;

    /// Does the work of equals for a long key.
    bool hasLongText(const NameKey& key) const;

    uint8_t bytes_[16];
};

} // namespace kel
