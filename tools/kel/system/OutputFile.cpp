#include "system/OutputFile.h"

#include "system/System.h"

#include <cerrno>
#include <utility>

namespace kel::tool {

namespace fs = std::filesystem;

namespace {

/// Returns the file that the name leads to through symbolic links, whether it exists or not.
fs::path behindLinks(fs::path path) {
    constexpr int mostLinks = 40; // as many as operating systems follow
    std::error_code ignored;
    for (int i = 0; i < mostLinks && fs::is_symlink(path, ignored); ++i) {
        path = path.parent_path() / fs::read_symlink(path, ignored); // an absolute one replaces all
    }
    return path;
}

/// Returns whether the file is written directly because it exists and is not a regular one.
bool isDevice(const fs::path& target) {
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    return fs::exists(status) && !fs::is_regular_file(status);
}

[[noreturn]] void failToWrite(const std::string& name, const std::string& reason) {
    throw Failure{Trouble::unwritten, name + ": cannot be written: " + reason};
}

} // namespace

bool OutputFile::canTakeBack(const std::string& name) {
    return name != "-" && !isDevice(behindLinks(pathOf(name)));
}

bool OutputFile::replaces(const std::string& output, const std::string& input) {
    std::error_code isMissing;
    return output != "-" && input != "-" &&
           fs::equivalent(pathOf(output), pathOf(input), isMissing) && canTakeBack(output);
}

OutputFile::OutputFile(std::string name) : name_(std::move(name)) {
    try {
        open();
    } catch (...) {
        discard();
        throw;
    }
}

void OutputFile::open() {
    if (name_ == "-") {
        file_ = stdout;
        return;
    }
    const fs::path target = behindLinks(pathOf(name_));
    if (isDevice(target)) {
        errno = 0;
        file_ = openToWrite(name_);
        if (file_ == nullptr) {
            failWithSystemReason();
        }
        return;
    }
    target_ = target;
    openTemporary();
}

OutputFile::~OutputFile() {
    discard();
}

void OutputFile::discard() {
    if (file_ != nullptr && file_ != stdout) {
        std::fclose(file_);
    }
    if (!temporary_.empty()) {
        std::error_code ignored;
        fs::remove(temporary_, ignored);
        keepTemporary();
    }
}

void OutputFile::openTemporary() {
    errno = 0;
    if (!mayWrite(target_)) {
        failWithSystemReason(); // replacing the file would circumvent its protection
    }
    fs::path temporary;
    file_ = createTemporary(target_.parent_path(), temporary);
    if (file_ == nullptr) {
        failWithSystemReason();
    }
    temporary_ = std::move(temporary); // only now is it this process's own
    copyPermissions(file_, target_);
}

void OutputFile::commit() {
    if (std::ferror(file_) == 0) {
        errno = 0; // otherwise errno is the reason why earlier bytes did not arrive
    }
    if (std::fflush(file_) != 0 || std::ferror(file_) != 0) {
        failWithSystemReason();
    }
    if (file_ == stdout) {
        file_ = nullptr; // other output can follow
        return;
    }
    if (target_.empty()) {
        closeFile();
        return;
    }
    const fs::path folder = target_.parent_path();
    if (!synchronise(file_)) {
        failWithSystemReason();
    }
    closeFile();
    if (const std::error_code failure = replaceFile(temporary_, target_)) {
        fail(failure.message());
    }
    temporary_.clear();
    keepTemporary();
    if (const std::error_code failure = synchroniseFolder(folder)) {
        throw Failure{Trouble::unwritten,
                      name_ +
                          ": was written, but a power failure can undo it: " + failure.message()};
    }
}

void OutputFile::closeStdout() {
    const bool isReported = std::ferror(stdout) != 0;
    errno = 0;
    if (std::fclose(stdout) != 0 && !isReported) {
        failToWrite("-", systemReason());
    }
}

void OutputFile::closeFile() {
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) {
        failWithSystemReason();
    }
}

void OutputFile::fail(const std::string& reason) const {
    failToWrite(name_, reason);
}

} // namespace kel::tool
