/// \file
/// Files: load, load_or, load_struct, save, append, and a reader of several roots.
///
///     kel::value settings = kel::load_struct_or("app.kel", kel::object());
///     settings["runs"] = settings.get_or("runs", 0) + 1;
///     kel::save_atomically(settings, "app.kel");
///     for (const kel::value& entry : kel::reader("log.kelb")) { ... }
///
/// Names are bytes on POSIX systems and Unicode on Windows. Every failure is an io_error with the
/// name of the file, except std::bad_alloc and a name_error for a name with a NUL. Nothing here
/// depends on the locale.
#pragma once

#include <kel/cpp/rings.hpp>
#include <kel/cpp/roots.hpp>
#include <kel/cpp/text_losses.hpp>

#include <optional>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the form in which a value is written to a file.
inline format format_to_write(const std::filesystem::path& file, format how) {
    if (how != format::automatic) {
        return how;
    }
    const std::filesystem::path extension = file.extension();
    const auto is_equal = [](auto character, char wanted) {
        const bool is_capital = character >= 'A' && character <= 'Z';
        return character + (is_capital ? 'a' - 'A' : 0) == wanted;
    };
    constexpr std::string_view binary = ".kelb";
    const auto& letters = extension.native();
    return std::equal(letters.begin(), letters.end(), binary.begin(), binary.end(), is_equal)
               ? format::binary
               : format::text;
}

/// Returns the content of a file. One byte too many can be among it.
/// \throws malformed for a file with too many bytes
inline std::string content_of(const std::filesystem::path& file, const limits& allowed) {
    const std::string name = name_of(file);
    errno = 0;
    const file_handle opened = open_file(file, "rb");
    if (!opened) {
        raise_io(name, "cannot be opened", errno);
    }
    std::error_code no_size; // such as for a pipe
    const std::uintmax_t size = std::filesystem::file_size(file, no_size);
    if (no_size) {
        return read_all(opened.get(), name, 0, allowed.most_bytes());
    }
    require_bytes(allowed, size, name);
    return read_all(opened.get(), name, size + mark_size, allowed.most_bytes());
}

/// Returns the content of a file, or nothing if the file does not exist.
inline std::optional<std::string> content_if_exists(const std::filesystem::path& file,
                                                    const limits& allowed) {
    try {
        return content_of(file, allowed);
    } catch (const io_error& failure) {
        if (failure.reason() != std::errc::no_such_file_or_directory) {
            throw;
        }
        return std::nullopt;
    }
}

/// Opens a file to write to.
inline file_handle open_to_write(const std::filesystem::path& file, const char* mode,
                                 const std::string& name) {
    errno = 0;
    file_handle opened = open_file(file, mode);
    if (!opened) {
        raise_io(name, "cannot be opened for writing", errno);
    }
    return opened;
}

/// Writes the content and closes the file.
inline void write_and_close(file_handle file, std::string_view content, const std::string& name) {
    errno = 0;
    if (!write_all(file.get(), content) || !close_checked(std::move(file))) {
        raise_io(name, "cannot be written", errno);
    }
}

/// The end of a file to which a text is to be appended.
struct file_end {
    explicit file_end(const std::filesystem::path& file) {
        std::error_code ignored;
        is_regular = std::filesystem::is_regular_file(file, ignored);
        size = is_regular ? std::filesystem::file_size(file, ignored) : 0;
        const file_handle opened = is_regular && size > 0 ? open_file(file, "rb") : nullptr;
        if (opened) { // a file without the permission to read is not examined
            char first[magic.size()] = {};
            const std::size_t got = std::fread(first, 1, sizeof first, opened.get());
            is_binary = std::string_view(first, got) == magic;
            is_inside_line =
                std::fseek(opened.get(), -1, SEEK_END) == 0 && std::fgetc(opened.get()) != '\n';
        }
    }

    bool is_regular = false;
    std::uintmax_t size = 0;
    bool is_binary = false;
    bool is_inside_line = false;
};

} // namespace detail

/// Reads the values of a file or of a content in memory one after the other, once. The whole
/// content is in memory, but only one of its values at a time unless you keep them.
class reader {
public:
    /// A loop over the values that are left.
    class walk {
    public:
        walk() = default;
        /// Reads with a reader, borrowed.
        explicit walk(reader* owner) : owner_(owner) {}
        /// Reads the next value, and fails, as the reader's next does.
        bool next() { return owner_->next(current_); }
        /// Returns the value that next read, borrowed until the next one.
        const value& current() const { return current_; }

    private:
        reader* owner_ = nullptr;
        value current_;
    };
    using iterator = detail::walk_iterator<walk>;

    /// Reads a file, all of it at once. Rings are cut or refused in each value.
    /// \throws malformed for a file with too many bytes
    /// \throws io_error for a file that cannot be read
    explicit reader(const file_name& file, const limits& allowed = {})
        : reader(detail::name_of(file), detail::content_of(file, allowed), allowed) {}

    /// Reads a text or a binary content in memory.
    static reader from_memory(std::string content, const limits& allowed = {}) {
        return reader({}, std::move(content), allowed);
    }

    /// Reads the next value, which can be null in text. Returns false after the last one.
    /// \throws malformed if the content is damaged or ends inside a value. The values before it are
    ///         valid. Nothing can be read after it: next then throws an io_error.
    bool next(value& root) { return roots_->next(root); }

    /// Begins a loop over the values that are left. The reader must outlive it.
    iterator begin() { return iterator(walk(this)); }
    iterator end() const { return {}; }

private:
    reader(std::string name, std::string content, const limits& allowed)
        : roots_(detail::roots_of(std::move(name), std::move(content), allowed)) {}

    std::unique_ptr<detail::roots> roots_;
};

/// Returns the only value of a file. The word null in a text gives null.
/// \param allowed a kel::format, or kel::limits
///
/// \throws malformed for a file with none or several, for a damaged one, and for what is not
/// allowed
///
/// \throws io_error, with the reason of the system, for a file that cannot be opened or read
inline value load(const file_name& file, const limits& allowed = {}) {
    return detail::only_root(detail::name_of(file), detail::content_of(file, allowed), allowed);
}

/// Returns the only value of a file, or the fallback if the file does not exist. A file that exists
/// and cannot be read is a failure, as for load.
inline value load_or(const file_name& file, value fallback, const limits& allowed = {}) {
    std::optional<std::string> content = detail::content_if_exists(file, allowed);
    return content ? detail::only_root(detail::name_of(file), *std::move(content), allowed)
                   : std::move(fallback);
}

namespace detail {

/// Returns the only value of a content, which is a struct. The rings of any other value are cut.
/// \throws malformed as only_root, and for any other value
inline value only_struct(const std::string& name, std::string content, const limits& allowed) {
    value root = only_root(name, std::move(content), allowed);
    if (struct_of(root.raw()) == nullptr) {
        const dropped_document refused(root);
        throw malformed(name, 0, std::string("wanted a struct, found ") + words(root.kind()) + '.');
    }
    return root;
}

} // namespace detail

/// Returns the only value of a file, which is a struct, checked or not.
/// \throws malformed also for a file that holds any other value, such as null
/// \throws io_error as load
inline value load_struct(const file_name& file, const limits& allowed = {}) {
    return detail::only_struct(detail::name_of(file), detail::content_of(file, allowed), allowed);
}

/// Returns the same, or the fallback if the file does not exist. The fallback is not examined.
inline value load_struct_or(const file_name& file, value fallback, const limits& allowed = {}) {
    std::optional<std::string> content = detail::content_if_exists(file, allowed);
    return content ? detail::only_struct(detail::name_of(file), *std::move(content), allowed)
                   : std::move(fallback);
}

/// Writes a value to a file and replaces its content. The file is untouched if the value cannot be
/// written in this form, or if text would not give it back (lost_in_text). It is damaged if the
/// system fails, for instance because the disk is full: save_atomically avoids that.
/// \throws io_error for null in binary, a value without this form, and failures of the system
/// \throws malformed for what loading the file within these limits refuses. Nothing is cut, so a
/// value that contains itself exceeds every limit of values and depth
/// \param allowed a kel::format, or kel::limits, which a program also loads with
inline void save(const value& content, const file_name& file, const limits& allowed = {}) {
    const format chosen = detail::format_to_write(file, allowed.format());
    const std::string name = detail::name_of(file);
    const std::string image = detail::file_image(content, chosen, name, allowed);
    detail::write_and_close(detail::open_to_write(file, "wb", name), image, name);
}

/// Adds a value to the end of a text file, which is created if it does not exist. A failure leaves
/// the file as it was, if nobody else writes to it.
/// \throws io_error also for a binary file and for a name that ends in .kelb
inline void append(const value& content, const file_name& file) {
    const std::string name = detail::name_of(file);
    const detail::file_end end(file);
    if (end.is_binary || detail::format_to_write(file, format::automatic) == format::binary) {
        throw io_error(name, 0, "only text can be appended to");
    }
    // Otherwise a number would continue the one before.
    const std::string image =
        (end.is_inside_line ? "\n" : "") + detail::file_image(content, format::text, name);
    detail::file_handle opened = detail::open_to_write(file, "ab", name);
    try {
        detail::write_and_close(std::move(opened), image, name);
    } catch (const io_error&) {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(file, ignored)) {
            std::filesystem::resize_file(file, end.size, ignored);
        }
        throw;
    }
}

} // namespace v1
} // namespace kel
