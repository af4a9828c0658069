/// \file
/// OutputFile: a file that appears whole or not at all.
#pragma once

#include "failures/Failure.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace kel::tool {

/// The output of a command. A regular file is written under another name in the same folder. Only
/// commit puts it in the place of the old file, with the old file's permissions. If the name is a
/// symbolic link, the link is kept and the file that it leads to is replaced. "-" is stdout.
/// Stdout, devices and pipes are written directly: nothing can be taken back there.
class OutputFile {
public:
    /// \throws Failure unwritten, "NAME: cannot be written: the reason"
    explicit OutputFile(std::string name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /// Removes the written file unless it was committed.
    ~OutputFile();

    /// Returns whether a file of this name would be written under another name first, so that its
    /// bytes can be taken back.
    static bool canTakeBack(const std::string& name);

    /// Returns whether an output of this name would replace the input of the other name.
    static bool replaces(const std::string& output, const std::string& input);

    /// Returns the file to write to.
    std::FILE* file() { return file_; }

    /// Gives the written file its final name. Call it once, after the last byte.
    /// \throws Failure unwritten
    void commit();

    /// Closes stdout after all output. A network file system reports lost bytes only then. A
    /// failure that an operation on stdout has had before is not reported again.
    ///
    /// \throws Failure unwritten
    static void closeStdout();

private:
    void open();
    void discard();
    void openTemporary();
    void closeFile();
    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void failWithSystemReason() const { fail(systemReason()); }

    std::string name_;             ///< as the user gave it
    std::filesystem::path target_; ///< the file to be replaced; empty when written directly
    std::filesystem::path temporary_;
    std::FILE* file_ = nullptr;
};

} // namespace kel::tool
