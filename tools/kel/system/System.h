/// \file
/// The tool's needs of the operating system beyond the C++ standard library. One source file
/// per system implements it; this one is free of the differences.
///
/// Names of files are texts as the user gave them: bytes on POSIX systems, UTF-8 on Windows.
#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace kel::tool {

/// The arguments of the command line with the name of the program in front. On Windows the process
/// has them wide, whatever main was given.
std::vector<std::string> argumentsOf(int argc, const char* const* argv);

/// Makes the process ready: bytes pass stdin and stdout as they are, and a write to a closed pipe
/// fails like any other write instead of ending the process.
void prepareProcess();

/// True when the file is a terminal that understands control sequences.
bool isTerminal(std::FILE* file);

/// The name as the C++ library takes it.
std::filesystem::path pathOf(const std::string& name);

/// Opens a file to read from. \return null with errno set
std::FILE* openToRead(const std::string& name);

/// Opens a file or a device to write to, emptied. \return null with errno set
std::FILE* openToWrite(const std::string& name);

/// Returns true if the file that the path leads to can be written or does not exist. Otherwise sets
/// errno to the reason.
bool mayWrite(const std::filesystem::path& path);

/// Bytes as a file to read from. They stay the caller's and have to live as long as this. One at a
/// time.
class MemoryToRead {
public:
    /// \throws std::system_error when there is no room
    explicit MemoryToRead(std::string_view bytes);
    MemoryToRead(const MemoryToRead&) = delete;
    MemoryToRead& operator=(const MemoryToRead&) = delete;
    ~MemoryToRead();

    std::FILE* file() { return file_; }

private:
    std::FILE* file_;
};

/// A file to write to whose bytes stay in memory.
class MemoryToWrite {
public:
    /// \param limit how many bytes fit; writing more fails
    /// \throws std::system_error when there is no room
    explicit MemoryToWrite(size_t limit);
    MemoryToWrite(const MemoryToWrite&) = delete;
    MemoryToWrite& operator=(const MemoryToWrite&) = delete;
    ~MemoryToWrite();

    std::FILE* file();

    /// Closes the file. \return what was written; nothing when that was more than fits
    std::optional<std::string> take();

private:
    struct Storage;

    std::unique_ptr<Storage> storage_;
};

/// A new, empty file in the folder (empty for the current one), open for writing, with the usual
/// permissions of new files. A signal that ends the process removes the file.
/// \param[out] path the file with its folder
/// \return null with errno set when it cannot be made
std::FILE* createTemporary(const std::filesystem::path& folder, std::filesystem::path& path);

/// From now on a signal leaves the temporary file alone.
void keepTemporary();

/// Gives an open file the permissions and, where that is allowed, owner and group of another file;
/// never those of running as somebody, nor a group's permissions without the group. A file that
/// does not exist changes nothing.
void copyPermissions(std::FILE* file, const std::filesystem::path& from);

/// Waits until the file's bytes are on the medium. \return false with errno set on failure
bool synchronise(std::FILE* file);

/// Puts a closed file in the place of another, which may exist: at no moment is there none.
std::error_code replaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Waits until the folder's entries are on the medium, where the system can.
void synchroniseFolder(const std::filesystem::path& folder);

} // namespace kel::tool
