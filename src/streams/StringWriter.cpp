#include "streams/StringWriter.h"

#include "platform/Memory.h"
#include "streams/StandardStream.h"

#include <algorithm>
#include <cstring>
#include <kel/JException.h>
#include <string_view>

using kel::checkState;
using kel::leavingItToTheState;

StringWriter::~StringWriter() {
    kel::platform::deallocate(snapshot_);
}

const char* StringWriter::getString() {
    if (changed_) {
        kel::platform::deallocate(snapshot_);
        snapshot_ = static_cast<char*>(kel::platform::allocateZeroed(1, size_t{count_} + 1));
        if (snapshot_ == nullptr) {
            throw JOutOfMemoryException("StringWriter out of memory.");
        }
        const std::string_view written = text_.view();
        std::memcpy(snapshot_, written.data(), std::min<size_t>(count_, written.size()));
        changed_ = false;
    }
    return snapshot_;
}

// Sets fail if the count and the NUL would exceed 32 bits; getStringSize would then be wrong.
void StringWriter::refuseOverflow(uint32_t count) {
    if (count >= UINT32_MAX - count_) {
        text_.setstate(std::ios_base::failbit);
    }
}

void StringWriter::JWrite(int32_t byte) {
    changed_ = true;
    leavingItToTheState(text_, [&] {
        refuseOverflow(1);
        text_.put(static_cast<char>(static_cast<uint8_t>(byte)));
    });
    checkState(text_, "StringWriter::JWrite(int). Stream returned bad() flag.",
               "StringWriter::JWrite(int). Stream returned fail() flag.");
    ++count_;
}

void StringWriter::JWrite(const uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("StringWriter::JWrite(uchar*,int,int). Buffer=NULL");
    }
    changed_ = true;
    if (count < 1) {
        return;
    }
    leavingItToTheState(text_, [&] {
        refuseOverflow(static_cast<uint32_t>(count));
        text_.write(reinterpret_cast<const char*>(buffer + offset), count);
    });
    checkState(text_, "StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.",
               "StringWriter::JWrite(uchar*,int,int). Stream returned fail() flag.");
    count_ += static_cast<uint32_t>(count);
}

int64_t StringWriter::JTell() {
    int64_t position = -1;
    leavingItToTheState(text_, [&] { position = text_.tellp(); });
    return position;
}

void StringWriter::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("StringWriter::JSeek(). Cannot seek to negative position.");
    }
    leavingItToTheState(text_, [&] { text_.seekp(position); });
    checkState(text_, "StringWriter::JSeek(). Stream returned bad() flag.",
               "StringWriter::JSeek(). Stream returned fail() flag.");
}
