#include "streams/FileInputStream.h"

#include "platform/File.h"
#include "streams/StandardStream.h"

#include <kel/JException.h>

using kel::leavingItToTheState;

FileInputStream::FileInputStream(const char* name)
    : mode_(ownedFile), file_(kel::platform::openFile(name, "rb")) {
    if (file_ == nullptr) {
        throw JIOException("FileInputStream. Cannot open file.");
    }
}

FileInputStream::FileInputStream(std::FILE* file) : mode_(hostFile), file_(file) {
    if (file_ == nullptr) {
        throw JIOException("FileInputStream. Cannot open file.");
    }
}

FileInputStream::FileInputStream(std::istream& stream) : mode_(standardStream), stream_(&stream) {}

FileInputStream::~FileInputStream() {
    if (mode_ == ownedFile) {
        std::fclose(file_);
    }
}

int32_t FileInputStream::JRead() {
    if (mode_ == closed) {
        return -1;
    }
    if (mode_ == standardStream) {
        int32_t byte = -1;
        leavingItToTheState([&] { byte = stream_->get(); });
        checkStream();
        return byte;
    }
    uint8_t byte = 0;
    if (std::fread(&byte, 1, 1, file_) == 1) {
        return byte;
    }
    if (std::feof(file_) != 0) {
        return -1;
    }
    throw JIOException("FileInputStream::JRead(). Stream returned error:32");
}

int32_t FileInputStream::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("FileInputStream::JRead(uchar*,int,int). Buffer=NULL");
    }
    if (mode_ == closed || count < 1) {
        return 0;
    }
    if (mode_ == standardStream) {
        std::streamsize got = 0;
        leavingItToTheState(
            [&] { stream_->read(reinterpret_cast<char*>(buffer + offset), count); });
        got = stream_->gcount();
        checkStream();
        return static_cast<int32_t>(got);
    }
    const size_t got = std::fread(buffer + offset, 1, static_cast<size_t>(count), file_);
    if (got < static_cast<size_t>(count) && std::feof(file_) == 0) {
        throw JIOException("FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
    }
    return static_cast<int32_t>(got);
}

void FileInputStream::checkStream() const {
    if (stream_->bad()) {
        throw JIOException("FileInputStream::JRead(). Stream returned bad() flag.");
    }
    // Meeting the end sets fail beside eof; that alone is no failure.
    if (stream_->fail() && !stream_->eof()) {
        throw JIOException("FileInputStream::JRead(). Stream returned fail() flag.");
    }
}

void FileInputStream::JClose() {
    const Mode was = mode_;
    mode_ = closed;
    if (was == ownedFile && std::fclose(file_) != 0) {
        throw JIOException("FileInputStream::JClose() error.");
    }
}

int64_t FileInputStream::JTell() {
    switch (mode_) {
    case ownedFile:
    case hostFile:
        return kel::platform::tell(file_);
    case standardStream:
        // Asking the buffer leaves the state alone, which tellg would not at the end.
        return stream_->rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    default:
        return -1;
    }
}

void FileInputStream::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("FileInputStream::JSeek(). Cannot seek to negative position.");
    }
    if (mode_ == standardStream) {
        leavingItToTheState([&] {
            if (stream_->eof() && !stream_->bad()) {
                stream_->clear();
            }
            stream_->seekg(position);
        });
        if (stream_->bad()) {
            throw JIOException("FileInputStream::JSeek(). Stream returned bad() flag.");
        }
        if (stream_->fail()) {
            throw JIOException("FileInputStream::JSeek(). Stream returned fail() flag.");
        }
        return;
    }
    if (mode_ == closed || !kel::platform::seek(file_, position)) {
        throw JIOException("FileInputStream::JSeek(long). Stream returned error:32");
    }
}
