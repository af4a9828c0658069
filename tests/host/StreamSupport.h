/// \file
/// Shared helpers of the tests of streams besides Host.h: files, pipes, and text in one expression.
#pragma once

#include "Host.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

namespace host {

/// Closes a stdio file at the end of the scope.
struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using Handle = std::unique_ptr<std::FILE, Closer>;

/// A file of the test's own, removed at its end.
class File {
public:
    /// Returns a name that no other file of a test has.
    static std::string uniqueName() {
        static int count = 0;
        return "kel-host-" + std::to_string(getpid()) + "-" + std::to_string(++count);
    }

    /// Returns a file of this name in the folder for temporary files.
    static File named(const std::filesystem::path& name) {
        return File(Path{std::filesystem::temp_directory_path() / name});
    }

    File() : File(Path{std::filesystem::temp_directory_path() / uniqueName()}) {}
    explicit File(const std::string& bytes) : File() {
        std::ofstream(path_, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { std::filesystem::remove(path_); }

    /// Returns the name in the encoding that the library expects: UTF-8 on Windows.
    const char* name() const { return name_.c_str(); }
    Handle open(const char* mode) const { return Handle(std::fopen(name(), mode)); }
    std::string bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    struct Path {
        std::filesystem::path path;
    };

    explicit File(Path path) : path_(std::move(path.path)) {
        const auto utf8 = path_.u8string();
        name_.assign(utf8.begin(), utf8.end());
    }

    std::filesystem::path path_;
    std::string name_;
};

/// Two stdio files joined by the system, neither of which can seek.
struct Pipe {
    Pipe() {
        int ends[2] = {-1, -1};
#if defined(_WIN32)
        const bool isOpen = _pipe(ends, 64 * 1024, _O_BINARY | _O_NOINHERIT) == 0;
#else
        const bool isOpen = pipe(ends) == 0;
#endif
        if (isOpen) {
            reading = Handle(fdopen(ends[0], "rb"));
            writing = Handle(fdopen(ends[1], "wb"));
        }
    }

    Handle reading;
    Handle writing;
};

/// Returns all bytes that are left in a file.
inline std::string rest(std::FILE* file) {
    std::string bytes;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
        bytes.push_back(static_cast<char>(c));
    }
    return bytes;
}

/// Returns an array of the Ints from 0 to count - 1.
inline Held<KEL_Array> numbers(int count) {
    auto array = hold(CreateKELArray());
    for (int i = 0; i < count; ++i) {
        array->addInt(i);
    }
    return array;
}

/// Returns the text of a value.
inline std::string textOf(KEL* value) {
    const auto stream = hold(CreateKELStringOutputStream());
    stream->write(value);
    const char* text = stream->getString();
    return text == nullptr ? "" : text;
}

/// Returns the value of a text.
inline Held<KEL> fromText(const std::string& text) {
    const auto stream =
        hold(CreateKELStringInputStream(text.data(), static_cast<int32_t>(text.size())));
    return hold(stream->read());
}

} // namespace host
