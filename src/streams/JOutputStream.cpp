#include "streams/JOutputStream.h"

#include <kel/JException.h>

void JOutputStream::JWrite(const uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("JOutputStream.JWrite : buff=NULL");
    }
    const uint8_t* bytes = buffer + offset;
    for (int32_t i = 0; i < count; ++i) {
        JWrite(bytes[i]);
    }
}
