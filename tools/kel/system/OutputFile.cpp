#include "system/OutputFile.h"

#include "Failure.h"
#include "system/System.h"

#include <cerrno>
#include <cstring>

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

} // namespace

bool OutputFile::canTakeBack(const std::string& name) {
    return name != "-" && !isDevice(behindLinks(pathOf(name)));
}

OutputFile::OutputFile(const std::string& name) : name_(name) {
    if (name == "-") {
        file_ = stdout;
        return;
    }
    const fs::path target = behindLinks(pathOf(name));
    if (isDevice(target)) {
        errno = 0;
        file_ = openToWrite(name);
        if (file_ == nullptr) {
            failWithSystemReason();
        }
        return;
    }
    target_ = target;
    openTemporary();
}

OutputFile::~OutputFile() {
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
    file_ = createTemporary(target_.parent_path(), temporary_);
    if (file_ == nullptr) {
        temporary_.clear();
        failWithSystemReason();
    }
    copyPermissions(file_, target_);
}

void OutputFile::commit() {
    if (std::ferror(file_) == 0) {
        errno = 0; // otherwise errno is the reason why earlier bytes did not arrive
    }
    if (std::fflush(file_) != 0 || std::ferror(file_) != 0) {
        failWithSystemReason();
    }
    if (target_.empty()) {
        if (file_ != stdout) {
            closeFile();
        }
        return;
    }
    if (!synchronise(file_)) {
        failWithSystemReason();
    }
    closeFile();
    if (const std::error_code failure = replaceFile(temporary_, target_)) {
        fail(failure.message());
    }
    temporary_.clear();
    keepTemporary();
    synchroniseFolder(target_.parent_path());
}

void OutputFile::closeFile() {
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) {
        failWithSystemReason();
    }
}

void OutputFile::fail(const std::string& reason) const {
    throw Failure{Trouble::unwritten, name_ + ": cannot be written: " + reason};
}

void OutputFile::failWithSystemReason() const {
    fail(errno != 0 ? std::strerror(errno) : "unknown reason");
}

} // namespace kel::tool
