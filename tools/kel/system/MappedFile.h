/// \file
/// MappedFile: the bytes of a file, which the system loads when they are needed.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace kel::tool {

/// The bytes of a file in the address space of the process. They are not copied into memory of its
/// own. If the file is cut short meanwhile, the use of a missing byte ends the process with a
/// message and the status of an input that cannot be read.
class MappedFile {
public:
    /// Maps a regular file.
    /// \param file an open file, which can be closed afterwards
    /// \param name of the file in messages
    /// \return null if the file is small, not regular, too large for the address space, or on a
    ///         file system without mappings. Read it then.
    static std::unique_ptr<MappedFile> of(std::FILE* file, const std::string& name);

    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    std::string_view bytes() const { return bytes_; }

    /// Gives the memory of whole pages back to the system. Their bytes remain valid: the system
    /// loads them again when they are used.
    /// \param begin the offset of the first byte, \param end and of the one after the last
    void release(size_t begin, size_t end) const;

private:
    explicit MappedFile(std::string_view bytes) : bytes_(bytes) {}

    std::string_view bytes_;
};

/// Files of fewer bytes are not mapped, because a copy of them costs nothing.
constexpr size_t smallestMapping = size_t{1} << 20U;

} // namespace kel::tool
