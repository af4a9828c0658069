/// \file
/// Pipe: two stdio files joined by the system, neither of which can seek.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

class Pipe {
public:
    Pipe() {
        int ends[2];
        if (open(ends) != 0) {
            throw std::runtime_error("no pipe");
        }
        reading_ = fdopen(ends[0], "rb");
        writing_ = fdopen(ends[1], "wb");
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeWriting();
        std::fclose(reading_);
    }

    std::FILE* reading() const { return reading_; }
    std::FILE* writing() const { return writing_; }

    /// Sends text at once. The text must fit the pipe.
    void send(const std::string& text) const {
        std::fwrite(text.data(), 1, text.size(), writing_);
        std::fflush(writing_);
    }

    /// Lets the reader see the end.
    void closeWriting() {
        if (writing_ != nullptr) {
            std::fclose(writing_);
            writing_ = nullptr;
        }
    }

private:
    static int open(int* ends) {
#if defined(_WIN32)
        return _pipe(ends, 64 * 1024, _O_BINARY | _O_NOINHERIT);
#else
        return pipe(ends);
#endif
    }

    std::FILE* reading_;
    std::FILE* writing_;
};
