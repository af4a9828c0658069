#include "streams/StringReader.h"

#include <kel/JException.h>
#include <string>
#include <utility>

namespace {

std::string copyOf(const char* text, int64_t length) {
    return text == nullptr || length < 0 ? std::string()
                                         : std::string(text, static_cast<size_t>(length));
}

} // namespace

StringReader::StringReader(const char* text, int64_t length)
    : buffer_(copyOf(text, length), std::ios_base::in) {}

int32_t StringReader::JRead() {
    return closed_ ? -1 : buffer_.sbumpc();
}

int32_t StringReader::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("JInputStream.read : buff=NULL");
    }
    if (closed_ || count < 1) {
        return 0;
    }
    return static_cast<int32_t>(buffer_.sgetn(reinterpret_cast<char*>(buffer + offset), count));
}

int64_t StringReader::JTell() {
    return buffer_.pubseekoff(0, std::ios_base::cur, std::ios_base::in);
}

void StringReader::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("StringReader::JSeek(). Cannot seek to negative position.");
    }
    if (closed_ || buffer_.pubseekpos(position, std::ios_base::in) == std::streampos(-1)) {
        throw JIOException("StringReader::JSeek(). Stream returned fail() flag.");
    }
}
