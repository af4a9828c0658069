#include "document/Input.h"

#include "check/RepeatedNames.h"
#include "document/KelReader.h"
#include "failures/Failure.h"
#include "system/System.h"
#include "json/JsonReader.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>

namespace kel::tool {

namespace {

/// Closes a file that was read, unless it is stdin.
struct Closer {
    void operator()(std::FILE* file) const {
        if (file != stdin) {
            std::fclose(file);
        }
    }
};

[[noreturn]] void failToRead(const std::string& name) {
    throw Failure{Trouble::unreadable, name + ": " + systemReason()};
}

/// Returns all bytes of the named file, or of stdin for "-".
std::string readBytes(const std::string& name) {
    constexpr size_t pieceSize = size_t{1} << 20U;
    errno = 0;
    const std::unique_ptr<std::FILE, Closer> file(name == "-" ? stdin : openToRead(name));
    if (file == nullptr) {
        failToRead(name);
    }
    std::string bytes;
    std::error_code isUnknown;
    const uintmax_t expected = std::filesystem::file_size(pathOf(name), isUnknown);
    if (file.get() != stdin && !isUnknown) {
        if (expected > bytes.max_size() - pieceSize) {
            throw std::bad_alloc();
        }
        bytes.reserve(static_cast<size_t>(expected) + pieceSize);
    }
    size_t size = 0;
    size_t got = 0;
    do {
        bytes.resize(size + pieceSize);
        got = std::fread(bytes.data() + size, 1, pieceSize, file.get());
        size += got;
    } while (got == pieceSize);
    if (std::ferror(file.get()) != 0) {
        failToRead(name);
    }
    bytes.resize(size);
    return bytes;
}

} // namespace

Content readContent(const std::string& name, std::optional<Format> from) {
    std::string bytes = readBytes(name);
    const Format format = from ? *from : recogniseFormat(bytes, name);
    if (format == Format::json) {
        bytes += '\n';
    }
    return {format, std::move(bytes), from ? std::nullopt : formatOfName(name)};
}

Input readInput(Content&& content, const std::string& name, std::optional<Format> target,
                Losses& losses) {
    auto& [format, bytes, named] = content;
    if (format == Format::json) {
        return {format, readJson(bytes, name, target, losses)};
    }
    if (format == Format::binary) {
        findRepeatedNames(bytes, losses);
    }
    const bool hasKinds = content.mayHoldDescriptors();
    return {format, readKel(std::move(bytes), format, name, named), hasKinds};
}

} // namespace kel::tool
