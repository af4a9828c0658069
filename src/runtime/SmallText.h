/// \file
/// SmallText: an owned text whose characters lie in the object if they are few.
#pragma once

#include "runtime/Storage.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace kel {

/// An owned, null-terminated text of bytes. Up to 23 characters lie in the object itself, which
/// holds no pointer to them, so a text can be moved in memory byte by byte.
class SmallText {
public:
    SmallText() noexcept { setShort({}); }

    /// Copies text, which holds no NUL.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    explicit SmallText(std::string_view text) {
        if (text.size() <= shortLength) {
            setShort(text);
        } else {
            setLong(text);
        }
    }

    SmallText(const SmallText&) = delete;
    SmallText& operator=(const SmallText&) = delete;
    ~SmallText() { clear(); }

    /// Makes the text empty.
    void clear() noexcept {
        if (isLong()) {
            platform::deallocateSized(long_.chars, long_.size + 1);
        }
        setShort({});
    }

    /// Exchanges the texts. Pointers to short ones are then invalid.
    void swap(SmallText& other) noexcept {
        unsigned char bytes[sizeof(SmallText)];
        std::memcpy(bytes, static_cast<void*>(this), sizeof bytes);
        std::memcpy(static_cast<void*>(this), static_cast<void*>(&other), sizeof bytes);
        std::memcpy(static_cast<void*>(&other), bytes, sizeof bytes);
    }

    /// Returns the characters, owned by the text.
    const char* chars() const { return isLong() ? long_.chars : short_.chars; }

    std::size_t size() const { return isLong() ? long_.size : shortLength - short_.left; }

    std::string_view view() const { return {chars(), size()}; }

private:
    static constexpr std::size_t shortLength = 23;
    static constexpr unsigned char longMark = 0xFF;

    bool isLong() const { return short_.left == longMark; }

    void setShort(std::string_view text) noexcept {
        short_ = {}; // one size, so that no loop is needed
        if (!text.empty()) {
            std::memcpy(short_.chars, text.data(), text.size());
        }
        short_.left = static_cast<unsigned char>(shortLength - text.size());
    }

    void setLong(std::string_view text) {
        auto* chars = static_cast<char*>(platform::allocateSized(text.size() + 1));
        if (chars == nullptr) {
            throwNoMemoryForText();
        }
        std::memcpy(chars, text.data(), text.size());
        chars[text.size()] = '\0';
        long_ = {chars, text.size()};
        short_.left = longMark;
    }

    /// The last byte counts the unused characters of a short text. If there are none, it is 0 and
    /// serves as the NUL.
    struct Short {
        char chars[shortLength];
        unsigned char left;
    };
    struct Long {
        char* chars;
        std::size_t size;
    };
    union {
        Short short_;
        Long long_;
    };
};

} // namespace kel
