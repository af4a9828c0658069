/// \file
/// FailingBuffer: a standard stream buffer over a medium that is broken.
#pragma once

#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>

/// Every read and write fails, so that the stream over it sets its bad flag.
class FailingBuffer : public std::streambuf {
protected:
    int_type underflow() override { throw std::runtime_error("broken medium"); }
    int_type overflow(int_type) override { return traits_type::eof(); }
    int sync() override { return -1; }
};

/// Delivers some bytes in small pieces and then throws. Every other operation throws too. The
/// exception is not derived from std::exception.
class ThrowingBuffer : public std::streambuf {
public:
    explicit ThrowingBuffer(std::string bytes = "") : bytes_(std::move(bytes)) {}

protected:
    int_type underflow() override {
        if (given_ == bytes_.size()) {
            throw 42;
        }
        char* next = bytes_.data() + given_++;
        setg(next, next, next + 1);
        return traits_type::to_int_type(*next);
    }
    int_type overflow(int_type) override { throw 42; }
    int sync() override { throw 42; }
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override {
        throw 42;
    }
    pos_type seekpos(pos_type, std::ios_base::openmode) override { throw 42; }

private:
    std::string bytes_;
    std::size_t given_ = 0;
};
