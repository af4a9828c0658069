#include "Input.h"

#include "Failure.h"
#include "KelReader.h"
#include "RepeatedNames.h"
#include "system/System.h"
#include "json/JsonReader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <system_error>

namespace kel::tool {

namespace {

[[noreturn]] void failToRead(const std::string& name) {
    throw Failure{Trouble::unreadable, name + ": " + std::strerror(errno)};
}

} // namespace

std::string readBytes(const std::string& name) {
    constexpr size_t pieceSize = size_t{1} << 20U;
    errno = 0;
    std::FILE* file = name == "-" ? stdin : openToRead(name);
    if (file == nullptr) {
        failToRead(name);
    }
    std::string bytes;
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

Input readInput(const std::string& name, std::optional<Format> from, std::optional<Format> target,
                Losses& losses) {
    try {
        std::string bytes = readBytes(name);
        const Format format = from ? *from : recogniseFormat(bytes, name);
        if (format == Format::json) {
            return {format, readJson(std::move(bytes), name, target, losses)};
        }
        if (format == Format::binary) {
            findRepeatedNames(bytes, losses);
        }
        const bool hasKinds =
            format == Format::text && bytes.find("@type") != std::string::npos; // in a header
        return {format, readKel(std::move(bytes), format, name), hasKinds};
    } catch (const std::bad_alloc&) {
        throw Failure{Trouble::unreadable, name + ": out of memory"};
    } catch (const std::length_error&) {
        throw Failure{Trouble::unreadable, name + ": out of memory"};
    } catch (const std::system_error& failure) {
        throw Failure{Trouble::unreadable, name + ": " + failure.code().message()};
    }
}

} // namespace kel::tool
