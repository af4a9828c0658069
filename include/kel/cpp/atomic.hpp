/// \file
/// save_atomically: a file appears whole or not at all.
#pragma once

#include <kel/cpp/io.hpp>

namespace kel {
inline namespace v1 {
namespace detail {

/// Returns the file that the name leads to through symbolic links, whether it exists or not.
inline std::filesystem::path behind_links(std::filesystem::path file, const std::string& name) {
    constexpr int most_links = 40; // as many as operating systems follow
    std::error_code ignored;
    for (int i = 0; std::filesystem::is_symlink(file, ignored); ++i) {
        if (i == most_links) {
            raise_io(name, "cannot be written", ELOOP);
        }
        // An absolute link replaces the folder.
        file = file.parent_path() / std::filesystem::read_symlink(file, ignored);
    }
    return file;
}

/// Puts the content in the place of a regular file, or of none.
inline void replace_file(const std::filesystem::path& target, bool is_old, std::string_view content,
                         const std::string& name) {
    errno = 0;
    file_handle old = is_old ? open_file(target, "ab") : nullptr;
    if (is_old && !old) {
        raise_io(name, "cannot be written", errno); // replacing it would circumvent its protection
    }
    temporary_file next(target.parent_path(), is_old);
    if (!next.file) {
        raise_io(name, "cannot be written, because its folder takes no new file", errno);
    }
    if (is_old) {
        copy_permissions(next.file.get(), old.get());
        old.reset(); // Windows does not replace a file that is open
    }
    errno = 0;
    if (!write_all(next.file.get(), content) || !synchronise(next.file.get()) ||
        !close_checked(std::move(next.file))) {
        raise_io(name, "cannot be written", errno);
    }
    std::error_code failure;
    std::filesystem::rename(next.path(), target, failure);
    if (failure) {
        throw io_error(name, 0, "cannot be replaced", failure);
    }
    next.keep();
    synchronise_folder(target.parent_path());
}

} // namespace detail

/// Writes a value to a file so that the file is either the old or the new one at every moment, even
/// if the system crashes. It writes another file in the same folder, waits until that is on the
/// medium, and renames it. The old file's permissions are kept and, if allowed, its owner and
/// group; on Windows the new file has the permissions that its folder gives it. If the name is a
/// symbolic link, the link is kept and the file that it leads to is replaced. Devices and pipes are
/// written directly.
/// \param allowed a kel::format, or kel::limits
///
/// \throws malformed, io_error as save does; the old file is then untouched
inline void save_atomically(const value& content, const file_name& file,
                            const limits& allowed = {}) {
    const std::string name = detail::name_of(file);
    const format chosen = detail::format_to_write(file, allowed.format());
    const std::string image = detail::file_image(content, chosen, name, allowed);
    const std::filesystem::path target = detail::behind_links(file, name);
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(target, ignored);
    const bool is_old = std::filesystem::exists(status);
    if (is_old && !std::filesystem::is_regular_file(status)) {
        detail::write_and_close(detail::open_to_write(file, "wb", name), image, name);
    } else {
        detail::replace_file(target, is_old, image, name);
    }
}

} // namespace v1
} // namespace kel
