/// \file
/// set_aside: keeps a damaged file under another name.
#pragma once

#include <kel/cpp/file_name.hpp>
#include <kel/cpp/system.hpp>

namespace kel {
inline namespace v1 {

/// Renames a file to a name that no file has: "app.kel.bad", or else "app.kel.bad2" and so on. A
/// symbolic link is renamed itself. So a program can start anew and save, and a person can repair
/// what was there.
///
///     } catch (const kel::malformed& failure) {
///         const std::string aside = kel::set_aside("app.kel");
///         std::cerr << failure.what() << "; kept as " << aside << '\n';
///     }
/// \return the new name, in UTF-8
///
/// \throws io_error, with the reason of the system, if the file cannot be renamed, also for what is
/// not a regular file, such as a device. It is as it was then.
inline std::string set_aside(const file_name& file) {
    constexpr int most_names = 10'000;
    std::error_code reason;
    if (!std::filesystem::is_regular_file(file.path(), reason)) {
        throw io_error(detail::name_of(file.path()), 0, "cannot be renamed",
                       reason ? reason : std::make_error_code(std::errc::invalid_argument));
    }
    for (int i = 1; i < most_names; ++i) {
        std::filesystem::path aside = file.path();
        aside += ".bad" + (i == 1 ? std::string() : std::to_string(i));
        errno = 0;
        // The name is taken with an empty file, which the renamed one replaces.
        if (!detail::create_file(aside, true)) {
            if (errno == EEXIST) {
                continue;
            }
            detail::raise_io(detail::name_of(aside), "cannot be created", errno);
        }
        std::filesystem::rename(file.path(), aside, reason);
        if (reason) {
            std::error_code ignored;
            std::filesystem::remove(aside, ignored);
            throw io_error(detail::name_of(file.path()), 0, "cannot be renamed", reason);
        }
        return detail::name_of(aside);
    }
    detail::raise_io(detail::name_of(file.path()), "cannot be renamed", EEXIST);
}

} // namespace v1
} // namespace kel
