/// \file
/// The functions that the tool needs from the operating system beyond the C++ standard library. One
/// source file per system implements them; this header is free of the differences.
///
/// File names are texts as the user gave them: bytes on POSIX systems, UTF-8 on Windows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace kel::tool {

/// Returns the arguments of the command line, beginning with the name of the program. On Windows
/// they are read as wide text from the process, whatever main was given.
std::vector<std::string> argumentsOf(int argc, const char* const* argv);

/// Prepares the process. stdin and stdout pass bytes unchanged. A write to a closed pipe or beyond
/// the limit of a file's size fails like any other write instead of ending the process. If stdin,
/// stdout or stderr is closed, its use fails, and no file that is opened later takes its place.
void prepareProcess();

/// Makes every allocation fail that would give the process more than this number of bytes in all.
/// \return false if the system cannot do so
bool limitMemory(uint64_t bytes);

/// Returns whether the file is a terminal that understands control sequences.
bool isTerminal(std::FILE* file);

/// Returns whether stdout is a pipe that its reader has closed. Call it only after a failure to
/// write to stdout.
bool isUnread();

/// Returns the name as a path of the C++ library.
std::filesystem::path pathOf(const std::string& name);

/// Opens a file to read from. \return null with errno set
std::FILE* openToRead(const std::string& name);

/// Opens a file or a device to write to, emptied. \return null with errno set
std::FILE* openToWrite(const std::string& name);

/// Moves to a byte of a file, also beyond 2 GiB. \return false with errno set on failure
bool seekTo(std::FILE* file, uint64_t offset);

/// Returns the byte of a file that is next, also beyond 2 GiB, or -1 with errno set.
int64_t offsetIn(std::FILE* file);

/// Returns whether the file that the path leads to can be written or does not exist. If not, sets
/// errno to the reason.
bool mayWrite(const std::filesystem::path& path);

/// Bytes as a file to read from, where the system can with readingProgress. The caller owns the
/// bytes and must keep them alive as long as this object. Only one such object can exist at a time.
class MemoryToRead {
public:
    /// \param rest bytes that follow the others
    /// \throws std::system_error when there is no room
    explicit MemoryToRead(std::string_view bytes, std::string_view rest = {});
    MemoryToRead(const MemoryToRead&) = delete;
    MemoryToRead& operator=(const MemoryToRead&) = delete;
    ~MemoryToRead();

    std::FILE* file() { return file_; }

private:
    std::FILE* file_;
};

/// A file to write to that keeps its bytes in memory.
class MemoryToWrite {
public:
    /// \param limit how many bytes fit; writing more fails
    /// \throws std::system_error when there is no room
    explicit MemoryToWrite(size_t limit);
    MemoryToWrite(const MemoryToWrite&) = delete;
    MemoryToWrite& operator=(const MemoryToWrite&) = delete;
    ~MemoryToWrite();

    std::FILE* file();

    /// Closes the file. \return the written bytes, or nothing if there were more than the limit
    std::optional<std::string> take();

private:
    struct Storage;

    std::unique_ptr<Storage> storage_;
};

/// A program that shows the output to a person page by page, in place of stdout.
class Pager {
public:
    /// Starts the program that the environment variable PAGER names, or else a usual one.
    Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;
    /// Waits until the person has finished.
    ~Pager();

    /// Waits until the person has finished. Call it once.
    /// \return whether the program could be started; if not, nothing was shown
    bool finish();

    /// Returns the file to write to, or null if the system has no such program.
    std::FILE* file() { return file_; }

private:
    std::FILE* file_;
};

/// Creates a new, empty file in the folder (empty for the current one), open for writing, with the
/// usual permissions of new files. A signal that ends the process removes the file.
/// \param[out] path the file with its folder
/// \return null with errno set if it cannot be made
std::FILE* createTemporary(const std::filesystem::path& folder, std::filesystem::path& path);

/// Removes the temporary file, if there is one. Only for a process that ends now: a signal handler
/// can call it.
void removeTemporary();

/// Makes later signals leave the temporary file alone.
void keepTemporary();

/// Gives an open file the permissions of another file and, if allowed, its owner and group. It
/// never copies set-user-ID or set-group-ID bits, nor a group's permissions without the group. If
/// the other file does not exist, this is a no-op.
void copyPermissions(std::FILE* file, const std::filesystem::path& from);

/// Waits until the file's bytes are on the medium. \return false with errno set on failure
bool synchronise(std::FILE* file);

/// Puts a closed file in the place of another, which can exist. There is a file at every moment.
std::error_code replaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Waits until the folder's entries are on the medium, if the system can. \return why it failed
std::error_code synchroniseFolder(const std::filesystem::path& folder);

} // namespace kel::tool
