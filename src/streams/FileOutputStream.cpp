#include "streams/FileOutputStream.h"

#include "platform/File.h"
#include "streams/StandardStream.h"

#include <kel/JException.h>

using kel::checkState;
using kel::leavingItToTheState;

FileOutputStream::FileOutputStream(const char* name, bool append)
    : mode_(ownedFile), file_(kel::platform::openFile(name, append ? "ab" : "wb")) {
    if (file_ == nullptr) {
        throw JIOException("FileOutputStream. Cannot open file.");
    }
}

FileOutputStream::FileOutputStream(std::FILE* file) : mode_(hostFile), file_(file) {
    if (file_ == nullptr) {
        throw JIOException("FileOutputStream. Cannot open file.");
    }
}

FileOutputStream::FileOutputStream(std::ostream& stream)
    : mode_(standardStream), stream_(&stream) {}

FileOutputStream::~FileOutputStream() {
    if (mode_ == ownedFile) {
        std::fclose(file_);
        return;
    }
    flushed();
}

void FileOutputStream::JWrite(int32_t byte) {
    const auto low = static_cast<uint8_t>(byte);
    if (mode_ == standardStream) {
        leavingItToTheState(*stream_, [&] { stream_->put(static_cast<char>(low)); });
        checkState(*stream_, "FileOutputStream::JWrite(int). Stream returned bad() flag.",
                   "FileOutputStream::JWrite(int). Stream returned fail() flag.");
        return;
    }
    if (mode_ == closed || std::fwrite(&low, 1, 1, file_) != 1) {
        throw JIOException("FileOutputStream::JWrite(int). Stream returned error:32");
    }
}

void FileOutputStream::JWrite(const uint8_t* buffer, int32_t offset, int32_t count) {
    if (buffer == nullptr) {
        throw JIOException("FileOutputStream::JWrite(uchar*,int,int). Buffer=NULL");
    }
    if (count < 1) {
        return;
    }
    const uint8_t* bytes = buffer + offset;
    if (mode_ == standardStream) {
        leavingItToTheState(*stream_,
                            [&] { stream_->write(reinterpret_cast<const char*>(bytes), count); });
        checkState(*stream_,
                   "FileOutputStream::JWrite(uchar*,int,int). Stream returned bad() flag.",
                   "FileOutputStream::JWrite(uchar*,int,int). Stream returned fail() flag.");
        return;
    }
    const auto size = static_cast<size_t>(count);
    if (mode_ == closed || std::fwrite(bytes, 1, size, file_) != size) {
        throw JIOException("FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    }
}

bool FileOutputStream::flushed() {
    if (mode_ == standardStream) {
        leavingItToTheState(*stream_, [&] { stream_->flush(); });
        return !stream_->fail(); // bad or fail
    }
    return mode_ == closed || std::fflush(file_) == 0;
}

void FileOutputStream::JFlush() {
    if (!flushed()) {
        throw JIOException("FileOutputStream::JFlush() error.");
    }
}

void FileOutputStream::JClose() {
    bool failed = false;
    if (mode_ == ownedFile) {
        mode_ = closed; // fclose frees the handle, whatever it returns
        const bool incomplete = std::ferror(file_) != 0;
        failed = std::fclose(file_) != 0 || incomplete;
    } else {
        failed = !flushed();
        mode_ = closed;
    }
    if (failed) {
        throw JIOException("FileOutputStream::JClose() error.");
    }
}

int64_t FileOutputStream::JTell() {
    switch (mode_) {
    case ownedFile:
    case hostFile:
        return kel::platform::tell(file_);
    case standardStream:
        return kel::positionOf(*stream_, std::ios::out,
                               "FileOutputStream::JSeek(). Stream returned bad() flag.");
    default:
        return -1;
    }
}

void FileOutputStream::JSeek(int64_t position) {
    if (position < 0) {
        throw JIOException("FileOutputStream::JSeek(). Cannot seek to negative position.");
    }
    if (mode_ == standardStream) {
        leavingItToTheState(*stream_, [&] { stream_->seekp(position); });
        checkState(*stream_, "FileOutputStream::JSeek(). Stream returned bad() flag.",
                   "FileOutputStream::JSeek(). Stream returned fail() flag.");
        return;
    }
    if (mode_ == closed || !kel::platform::seek(file_, position)) {
        throw JIOException("FileOutputStream::JSeek(long). Stream returned error:32");
    }
}
