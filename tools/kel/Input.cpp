#include "Input.h"

#include "Failure.h"
#include "KelReader.h"
#include "RepeatedNames.h"
#include "system/System.h"
#include "json/JsonReader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>

namespace kel::tool {

namespace {

[[noreturn]] void failToRead(const std::string& name) {
    throw Failure{Trouble::unreadable, name + ": " + std::strerror(errno)};
}

/// Returns all bytes of the named file, or of stdin for "-".
std::string readBytes(const std::string& name) {
    constexpr size_t pieceSize = size_t{1} << 20U;
    errno = 0;
    std::FILE* file = name == "-" ? stdin : openToRead(name);
    if (file == nullptr) {
        failToRead(name);
    }
    std::string bytes;
    std::error_code isUnknown;
    const uintmax_t expected = std::filesystem::file_size(pathOf(name), isUnknown);
    if (file != stdin && !isUnknown) {
        bytes.reserve(static_cast<size_t>(expected) + pieceSize);
    }
    size_t size = 0;
    size_t got = 0;
    do {
        bytes.resize(size + pieceSize);
        got = std::fread(bytes.data() + size, 1, pieceSize, file);
        size += got;
    } while (got == pieceSize);
    bytes.resize(size);
    const bool isRead = std::ferror(file) == 0;
    const int reason = errno;
    if (file != stdin) {
        std::fclose(file);
    }
    errno = reason;
    if (!isRead) {
        failToRead(name);
    }
    return bytes;
}

/// Runs the action, and reports that memory or room for files ran out as a fault of the input.
template <class Action> auto reading(const std::string& name, const Action& action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        throw Failure{Trouble::unreadable, name + ": out of memory"};
    } catch (const std::length_error&) {
        throw Failure{Trouble::unreadable, name + ": out of memory"};
    } catch (const std::system_error& failure) {
        throw Failure{Trouble::unreadable, name + ": " + failure.code().message()};
    }
}

} // namespace

Content readContent(const std::string& name, std::optional<Format> from) {
    return reading(name, [&] {
        std::string bytes = readBytes(name);
        const Format format = from ? *from : recogniseFormat(bytes, name);
        if (format == Format::json) {
            bytes += '\n';
        }
        return Content{format, std::move(bytes)};
    });
}

Input readInput(Content content, const std::string& name, std::optional<Format> target,
                Losses& losses) {
    return reading(name, [&]() -> Input {
        auto& [format, bytes] = content;
        if (format == Format::json) {
            return {format, readJson(bytes, name, target, losses)};
        }
        if (format == Format::binary) {
            findRepeatedNames(bytes, losses);
        }
        const bool hasKinds =
            format == Format::text && bytes.find("@type") != std::string::npos; // in a header
        return {format, readKel(std::move(bytes), format, name), hasKinds};
    });
}

} // namespace kel::tool
