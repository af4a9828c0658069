/// \file
/// Pipe: two stdio files joined by the system, neither of which can seek. POSIX only.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <unistd.h>

class Pipe {
public:
    Pipe() {
        int ends[2];
        if (pipe(ends) != 0) {
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

    /// Sends text at once; it must fit the pipe.
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
    std::FILE* reading_;
    std::FILE* writing_;
};
