#include <kel/JException.h>

#include "runtime/Clamp.h"
#include "runtime/MemoryPool.h"
#include "runtime/Storage.h"

#include <cstring>
#include <new>

using kel::platform::allocate;
using kel::platform::deallocate;

namespace {

char* allocateText(size_t length) {
    auto* buffer = static_cast<char*>(allocate(length + 1));
    if (buffer == nullptr) {
        kel::throwNoMemoryForText();
    }
    return buffer;
}

char* copyText(const char* text, size_t length) {
    char* buffer = allocateText(length);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    return buffer;
}

size_t lengthOf(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}

} // namespace

JString::JString(const char* text)
    : buffer_(text == nullptr ? nullptr : copyText(text, std::strlen(text))) {}

JString::JString(const char* text, uint32_t offset, uint32_t count)
    : buffer_(copyText(text + offset, count)) {}

JString::JString(const MemoryPool& pool, uint32_t offset, uint32_t count)
    : buffer_(allocateText(count)) {
    try {
        pool.read(offset, buffer_, count);
    } catch (...) {
        deallocate(buffer_);
        throw;
    }
    buffer_[count] = '\0';
}

void JString::freeBuffer() {
    deallocate(buffer_);
    buffer_ = nullptr;
}

JString& JString::operator=(const char* text) {
    if (text == nullptr) {
        return *this;
    }
    // The copy is made first because text can be this string's own buffer.
    const size_t size = std::strlen(text) + 1;
    auto* buffer = static_cast<char*>(allocate(size));
    if (buffer != nullptr) {
        std::memcpy(buffer, text, size);
    }
    deallocate(buffer_);
    buffer_ = buffer;
    return *this;
}

bool JString::hasText(const char* text) const {
    if (text == nullptr || buffer_ == nullptr) {
        return text == buffer_;
    }
    return std::strcmp(buffer_, text) == 0;
}

uint32_t JString::countBytes() const {
    return kel::clampTo<uint32_t>(lengthOf(buffer_));
}

JString* JString::part(uint32_t begin, uint32_t end) const {
    if (buffer_ == nullptr) {
        return new (std::nothrow) JString("");
    }
    return new (std::nothrow) JString(buffer_, begin, end - begin);
}

void JString::appendBytes(const char* bytes, size_t count) {
    const size_t length = lengthOf(buffer_);
    char* buffer = allocateText(length + count);
    if (length > 0) {
        std::memcpy(buffer, buffer_, length);
    }
    if (count > 0) {
        std::memcpy(buffer + length, bytes, count);
    }
    buffer[length + count] = '\0';
    deallocate(buffer_);
    buffer_ = buffer;
}

void JString::appendText(const char* text) {
    appendBytes(text, lengthOf(text));
}

char JString::charAt(int32_t index) const {
    if (index >= 0 && static_cast<size_t>(index) >= lengthOf(buffer_)) {
        throw JArrayIndexOutOfBoundsException("JString::getChar: index too large");
    }
    return index < 0 ? '\0' : buffer_[index];
}
