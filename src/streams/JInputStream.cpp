#include "streams/JInputStream.h"

#include <kel/JException.h>

int32_t JInputStream::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("JInputStream.read : buff=NULL");
    }
    uint8_t* out = buffer + offset;
    for (int32_t i = 0; i < count; ++i) {
        int32_t byte = -1;
        try {
            byte = JRead();
        } catch (const JIOException&) {
            if (i == 0) {
                throw;
            }
        }
        if (byte < 0) {
            return i;
        }
        out[i] = static_cast<uint8_t>(byte);
    }
    return count > 0 ? count : 0;
}
