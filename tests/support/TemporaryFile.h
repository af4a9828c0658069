/// \file
/// TemporaryFile: a file name of the test's own, removed at its end.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

class TemporaryFile {
public:
    TemporaryFile() : path_(makePath()) {}
    explicit TemporaryFile(const std::string& bytes) : TemporaryFile() { write(bytes); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { std::remove(path_.c_str()); }

    const char* name() const { return path_.c_str(); }

    void write(const std::string& bytes) const {
        std::ofstream(path_, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    std::string bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    static std::string makePath() {
        static std::atomic<int> count{0};
        static const auto start = std::chrono::steady_clock::now().time_since_epoch().count();
        const auto name = "kel-" + std::to_string(start) + "-" + std::to_string(++count);
        return (std::filesystem::temp_directory_path() / name).string();
    }

    std::string path_;
};
