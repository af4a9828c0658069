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

using File = std::unique_ptr<std::FILE, Closer>;

/// Opens the named file, or stdin for "-".
File openInput(const std::string& name) {
    errno = 0;
    File file(name == "-" ? stdin : openToRead(name));
    if (file == nullptr) {
        failToRead(name);
    }
    return file;
}

/// Returns all bytes of the file with this name.
std::string readBytes(const File& file, const std::string& name) {
    constexpr size_t pieceSize = size_t{1} << 20U;
    std::string bytes;
    std::error_code isUnknown;
    const uintmax_t expected = std::filesystem::file_size(pathOf(name), isUnknown);
    if (file.get() != stdin && !isUnknown) {
        // not reached: no test has so long a file
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

Content contentOf(InputBytes bytes, const std::string& name, std::optional<Format> from) {
    const Format format = from ? *from : recogniseFormat(bytes, name);
    return {format, std::move(bytes), from ? std::nullopt : formatOfName(name)};
}

} // namespace

Content readContent(const std::string& name, std::optional<Format> from) {
    return contentOf(InputBytes::inMemory(readBytes(openInput(name), name)), name, from);
}

Content mapContent(const std::string& name, std::optional<Format> from) {
    const File file = openInput(name);
    // Others can read stdin after this process, so its position matters.
    auto mapped = file.get() != stdin ? MappedFile::of(file.get(), name) : nullptr;
    return contentOf(mapped != nullptr ? InputBytes(std::move(mapped))
                                       : InputBytes::inMemory(readBytes(file, name)),
                     name, from);
}

Input readInput(Content&& content, const std::string& name, std::optional<Format> target,
                Losses& losses) {
    const bool hasKinds = content.mayHoldDescriptors();
    const auto [format, bytes, named] = std::move(content); // which releases them in the end
    if (format == Format::json) {
        return {format, readJson(bytes, name, target, losses)};
    }
    if (format == Format::binary) {
        findRepeatedNames(bytes, losses);
    }
    return {format, readKel(bytes, format, name, named), hasKinds};
}

} // namespace kel::tool
