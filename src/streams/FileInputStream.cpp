#include "streams/FileInputStream.h"

#include "platform/File.h"
#include "streams/StandardStream.h"

#include <kel/JException.h>
#include <utility>

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
        leavingItToTheState(*stream_, [&] { byte = stream_->get(); });
        // Reaching the end sets fail together with eof; that alone is not a failure.
        if (byte < 0 && (stream_->bad() || !stream_->eof())) {
            kel::checkState(*stream_, "FileInputStream::JRead(). Stream returned bad() flag.",
                            "FileInputStream::JRead(). Stream returned fail() flag.");
        }
        return byte;
    }
    uint8_t byte = 0;
    const int32_t got = readFile(&byte, 1);
    if (got < 0) {
        throw JIOException("FileInputStream::JRead(). Stream returned error:32");
    }
    return got == 1 ? byte : -1;
}

int32_t FileInputStream::JRead(uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("FileInputStream::JRead(uchar*,int,int). Buffer=NULL");
    }
    if (mode_ == closed || count < 1) {
        return 0;
    }
    if (mode_ == standardStream) {
        // A buffer that throws inside a larger read does not report how many bytes it has consumed.
        return JInputStream::JRead(buffer, offset, count);
    }
    const int32_t got = readFile(buffer + offset, count);
    if (got < 0) {
        throw JIOException("FileInputStream::JRead(uchar *, int, int). Stream returned error:32");
    }
    return got;
}

int32_t FileInputStream::readFile(uint8_t* out, int32_t count) {
    if (std::exchange(failurePending_, false)) {
        return -1;
    }
    const auto got = static_cast<int32_t>(std::fread(out, 1, static_cast<size_t>(count), file_));
    const bool failed = got < count && std::feof(file_) == 0;
    failurePending_ = failed && got > 0;
    return failed && got == 0 ? -1 : got;
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
        return kel::positionOf(*stream_, std::ios::in,
                               "FileInputStream::JSeek(). Stream returned bad() flag.");
    default:
        return -1;
    }
}

void FileInputStream::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("FileInputStream::JSeek(). Cannot seek to negative position.");
    }
    if (mode_ == standardStream) {
        leavingItToTheState(*stream_, [&] {
            if (stream_->eof() && !stream_->bad()) {
                stream_->clear();
            }
            stream_->seekg(position);
        });
        kel::checkState(*stream_, "FileInputStream::JSeek(). Stream returned bad() flag.",
                        "FileInputStream::JSeek(). Stream returned fail() flag.");
        return;
    }
    if (mode_ == closed || !kel::platform::seek(file_, position)) {
        throw JIOException("FileInputStream::JSeek(long). Stream returned error:32");
    }
    failurePending_ = false;
}
