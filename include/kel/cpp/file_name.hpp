/// \file
/// file_name: the name of a file, in UTF-8 or as a path of the standard library.
#pragma once

#include <kel/cpp/error.hpp>

#include <filesystem>
#include <string_view>
#include <type_traits>

namespace kel {
inline namespace v1 {

/// The name of a file, as the functions that read and write files take it. A text is UTF-8 on every
/// system. A std::filesystem::path of a text is not: on Windows the compiler decides what its bytes
/// mean.
class file_name {
public:
    /// Takes a text in UTF-8, or whatever else a std::filesystem::path is made of, such as a path
    /// or the wchar_t text that Windows gives.
    /// \throws name_error for a name that contains a NUL, where the system would cut it
    template <class Source,
              std::enable_if_t<std::is_constructible_v<std::filesystem::path, const Source&> &&
                                   !std::is_same_v<Source, file_name>,
                               int> = 0>
    file_name(const Source& name) : path_(path_of(name)) {
        if (path_.native().find(std::filesystem::path::value_type()) !=
            std::filesystem::path::string_type::npos) {
            throw name_error("The name of a file cannot contain a NUL.");
        }
    }

    /// Returns the name as a path, borrowed from the file_name.
    const std::filesystem::path& path() const noexcept { return path_; }
    operator const std::filesystem::path&() const noexcept { return path_; }

private:
    template <class Source> static std::filesystem::path path_of(const Source& name) {
        if constexpr (std::is_convertible_v<const Source&, std::string_view>) {
            const std::string_view utf8 = name;
#if defined(__cpp_char8_t)
            return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
#else
            return std::filesystem::u8path(utf8);
#endif
        } else {
            return std::filesystem::path(name);
        }
    }

    std::filesystem::path path_;
};

} // namespace v1
} // namespace kel
