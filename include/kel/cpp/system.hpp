/// \file
/// What reading and writing need from the operating system beyond the C++ standard library. The
/// other headers are free of the differences.
#pragma once

#include <kel/cpp/file_name.hpp>
#include <kel/cpp/ref.hpp>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace kel {
inline namespace v1 {
namespace detail {

/// Throws a failure of the system. Always gives a reason, by which it is recognised.
[[noreturn]] inline void raise_io(const std::string& file, const char* message, int reason) {
    throw io_error(file, 0, message,
                   std::error_code(reason == 0 ? EIO : reason, std::generic_category()));
}

/// Returns the name for messages: bytes on POSIX systems, UTF-8 on Windows.
inline std::string name_of(const std::filesystem::path& file) {
    const auto utf8 = file.u8string();
    return std::string(utf8.begin(), utf8.end());
}

struct closer {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using file_handle = std::unique_ptr<std::FILE, closer>;

#if defined(_WIN32)

/// Opens a file. Returns null with errno set on failure.
inline file_handle open_file(const std::filesystem::path& file, const char* mode) {
    return file_handle(_wfopen(file.c_str(), std::filesystem::path(mode).c_str()));
}

/// Creates a file and opens it for writing. Returns null with errno set, also if it exists.
inline file_handle create_file(const std::filesystem::path& file, bool /*is_private*/) {
    constexpr int how = _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT;
    const int descriptor = _wopen(file.c_str(), how, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) {
        return nullptr;
    }
    std::FILE* opened = _fdopen(descriptor, "wb");
    if (opened == nullptr) {
        _close(descriptor);
    }
    return file_handle(opened);
}

inline int process_id() {
    return _getpid();
}

/// Waits until the file's bytes are on the medium. Returns false with errno set on failure.
inline bool synchronise(std::FILE* file) {
    return _commit(_fileno(file)) == 0;
}

/// Does nothing: Windows cannot wait for a folder.
inline void synchronise_folder(const std::filesystem::path& /*folder*/) {}

/// Does nothing: the new file has the permissions that its folder gives it.
inline void copy_permissions(std::FILE* /*to*/, std::FILE* /*from*/) {}

#else

inline file_handle open_file(const std::filesystem::path& file, const char* mode) {
    return file_handle(std::fopen(file.c_str(), mode));
}

/// Creates a file and opens it for writing. Returns null with errno set, also if it exists.
/// \param is_private true to give it no permissions for others
inline file_handle create_file(const std::filesystem::path& file, bool is_private) {
    constexpr int how = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    const int descriptor = ::open(file.c_str(), how, is_private ? 0600 : 0666);
    if (descriptor < 0) {
        return nullptr;
    }
    std::FILE* opened = ::fdopen(descriptor, "wb");
    if (opened == nullptr) {
        const int reason = errno;
        ::close(descriptor);
        ::unlink(file.c_str());
        errno = reason;
    }
    return file_handle(opened);
}

inline int process_id() {
    return static_cast<int>(::getpid());
}

/// Waits until the file's bytes are on the medium. Returns false with errno set on failure.
inline bool synchronise(std::FILE* file) {
    return ::fsync(::fileno(file)) == 0;
}

/// Waits until the folder's entries are on the medium, if the file system can.
inline void synchronise_folder(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor); // some file systems refuse this; the file itself is safe already
        ::close(descriptor);
    }
}

/// Gives a file the permissions of another one and, if allowed, its owner and group.
inline void copy_permissions(std::FILE* to, std::FILE* from) {
    struct stat existing = {};
    if (::fstat(::fileno(from), &existing) != 0) {
        return;
    }
    // Data is not executed, so the bits to run it as another user or group are not copied. Without
    // the same group, its permissions must not apply to another group.
    mode_t mode = existing.st_mode & 0777U;
    const int descriptor = ::fileno(to);
    if (::fchown(descriptor, existing.st_uid, existing.st_gid) != 0 &&
        ::fchown(descriptor, static_cast<uid_t>(-1), existing.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(070);
    }
    (void)::fchmod(descriptor, mode); // if this fails, nobody but the owner has permissions
}

#endif

/// A file beside its later place, or for a moment. It is removed unless keep was called.
class temporary_file {
public:
    /// Creates the file. Where that fails, file is empty and errno is set.
    temporary_file(const std::filesystem::path& folder, bool is_private) {
        const std::string prefix = ".kel-" + std::to_string(process_id()) + "-";
        errno = EEXIST;
        for (int attempt = 0; !file && errno == EEXIST && attempt < 1000; ++attempt) {
            path_ = folder / (prefix + std::to_string(attempt) + ".tmp");
            file = create_file(path_, is_private);
        }
        is_kept_ = file == nullptr;
    }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;
    ~temporary_file() {
        if (!is_kept_) {
            file.reset();
            std::error_code ignored;
            std::filesystem::remove(path_, ignored);
        }
    }

    const std::filesystem::path& path() const noexcept { return path_; }
    void keep() noexcept { is_kept_ = true; }

    file_handle file;

private:
    std::filesystem::path path_;
    bool is_kept_ = false;
};

/// Writes all bytes and passes them to the system. Returns false with errno set on failure.
inline bool write_all(std::FILE* file, std::string_view content) {
    return std::fwrite(content.data(), 1, content.size(), file) == content.size() &&
           std::fflush(file) == 0;
}

/// Closes the file. Returns false with errno set if that fails.
inline bool close_checked(file_handle file) {
    return std::fclose(file.release()) == 0;
}

/// Returns all bytes of an open file.
/// \param likely_size the number of bytes for which room is made at first
/// \param most the number of bytes after which reading ends, a little later
/// \throws io_error "cannot be read"
inline std::string read_all(std::FILE* file, const std::string& name, std::uintmax_t likely_size,
                            std::uintmax_t most = UINTMAX_MAX) {
    std::string content;
    if (likely_size < content.max_size()) {
        content.reserve(static_cast<std::size_t>(likely_size));
    }
    char piece[16 * 1024];
    errno = 0;
    for (std::size_t got = sizeof piece; got == sizeof piece && content.size() <= most;) {
        got = std::fread(piece, 1, sizeof piece, file);
        if (got > content.max_size() - content.size()) {
            throw std::bad_alloc();
        }
        content.append(piece, got);
    }
    if (std::ferror(file) != 0) {
        raise_io(name, "cannot be read", errno);
    }
    return content;
}

// The library's binary streams need files. On Windows a FILE belongs to one of several C run-times,
// so the library gets the name of a temporary file there.

#if defined(_WIN32)

/// A temporary file under a name that the library can open.
class scratch_file {
public:
    explicit scratch_file(std::string_view content) : file_(folder(), true) {
        if (!file_.file || !write_all(file_.file.get(), content)) {
            raise_io(name_of(file_.path()), "a temporary file cannot be written", errno);
        }
        file_.file.reset();
    }
    std::string name() const { return name_of(file_.path()); }
    std::string bytes() const {
        const file_handle opened = open_file(file_.path(), "rb");
        if (!opened) {
            raise_io(name(), "a temporary file cannot be opened", errno);
        }
        return read_all(opened.get(), name(), 0);
    }

private:
    static std::filesystem::path folder() {
        std::error_code ignored; // the current folder then
        return std::filesystem::temp_directory_path(ignored);
    }

    temporary_file file_;
};

/// A binary input stream over bytes in memory.
class binary_source {
public:
    explicit binary_source(std::string_view content)
        : file_(content), stream_(call([this] {
              return adopt_made(CreateKELBinaryInputStream(file_.name().c_str()));
          })) {}

    KELInputStream& stream() { return *stream_; }
    /// Ends the stream. Returns the offset of the first byte not consumed, or -1 if it is unknown.
    std::int64_t end() {
        stream_ = nullptr;
        return -1;
    }

private:
    scratch_file file_;
    ref<KELBinaryInputStream> stream_;
};

/// Returns the value's binary form.
inline std::string binary_image(KEL& root) {
    const scratch_file file{std::string_view()};
    call([&] {
        const auto stream = adopt_made(CreateKELBinaryOutputStream(file.name().c_str()));
        stream->write(&root);
        stream->JClose();
    });
    return file.bytes();
}

#else

/// A binary input stream over bytes in memory, which must outlive it.
class binary_source {
public:
    explicit binary_source(std::string_view content)
        : file_(open(content)),
          stream_(call([this] { return adopt_made(CreateKELBinaryInputStream(file_.get())); })) {}

    KELInputStream& stream() { return *stream_; }
    /// Ends the stream. Returns the offset of the first byte not consumed, or -1 if it is unknown.
    std::int64_t end() {
        stream_ = nullptr; // it leaves the file just after the last byte that it consumed
        return std::ftell(file_.get());
    }

private:
    static file_handle open(std::string_view content) {
        // The file is opened for reading only, so the bytes are not changed.
        file_handle file(::fmemopen(const_cast<char*>(content.data()), content.size(), "rb"));
        if (!file) {
            throw std::bad_alloc();
        }
        return file;
    }

    file_handle file_;
    ref<KELBinaryInputStream> stream_;
};

/// Returns the value's binary form.
inline std::string binary_image(KEL& root) {
    struct memory {
        char* bytes = nullptr;
        std::size_t size = 0;
        ~memory() { std::free(bytes); }
    } written; // the file below is closed before its memory is freed
    file_handle file(::open_memstream(&written.bytes, &written.size));
    if (!file) {
        throw std::bad_alloc();
    }
    call([&] {
        const auto stream = adopt_made(CreateKELBinaryOutputStream(file.get()));
        errno = 0;
        try {
            stream->write(&root);
            stream->JClose();
        } catch (KELException* failure) {
            if (errno != ENOMEM) {
                throw;
            }
            DeleteKELException(failure);
            throw std::bad_alloc();
        }
    });
    if (!close_checked(std::move(file))) {
        throw std::bad_alloc();
    }
    return std::string(written.bytes, written.size);
}

#endif

} // namespace detail
} // namespace v1
} // namespace kel
