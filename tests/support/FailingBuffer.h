/// \file
/// FailingBuffer: a standard stream buffer over a medium that is broken.
#pragma once

#include <stdexcept>
#include <streambuf>

/// Every read and write fails, so that the stream over it sets its bad flag.
class FailingBuffer : public std::streambuf {
protected:
    int_type underflow() override { throw std::runtime_error("broken medium"); }
    int_type overflow(int_type) override { return traits_type::eof(); }
    int sync() override { return -1; }
};
