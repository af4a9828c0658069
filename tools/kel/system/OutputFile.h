/// \file
/// OutputFile: a file that appears whole or not at all.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace kel::tool {

/// Where a command writes. A regular file is written under another name in the same folder and
/// takes the place of the old one only in commit, with the old one's permissions; a name that is a
/// symbolic link stays one, and the file that it leads to is replaced. "-" is stdout, and devices
/// and pipes are written directly: nothing can be taken back there.
class OutputFile {
public:
    /// \throws Failure unwritten, "NAME: cannot be written: the reason"
    explicit OutputFile(const std::string& name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /// Removes what was written unless it was committed.
    ~OutputFile();

    /// The file to write to.
    std::FILE* file() { return file_; }

    /// Makes what was written the file of the name. Call it once, after the last byte.
    /// \throws Failure unwritten
    void commit();

private:
    void openTemporary();
    void closeFile();
    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void failWithSystemReason() const;

    std::string name_;             ///< as the user gave it
    std::filesystem::path target_; ///< what is replaced; empty when written directly
    std::filesystem::path temporary_;
    std::FILE* file_ = nullptr;
};

} // namespace kel::tool
