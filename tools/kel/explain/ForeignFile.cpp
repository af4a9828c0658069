#include "explain/ForeignFile.h"

#include <algorithm>

namespace kel::tool {

namespace {

using namespace std::string_view_literals;

constexpr const char* otherEncoding = "save it as UTF-8";
constexpr const char* compressed = "decompress it first";

struct Signature {
    std::string_view lead;
    const char* name;
    const char* hint;
};

// A lead that begins with another one stands before it.
constexpr Signature signatures[] = {
    {"\x89PNG\r\n\x1A\n"sv, "a PNG image", ""},
    {"\xFF\xD8\xFF"sv, "a JPEG image", ""},
    {"GIF8"sv, "a GIF image", ""},
    {"%PDF-"sv, "a PDF document", ""},
    {"\x1F\x8B"sv, "data compressed by gzip", compressed},
    {"BZh"sv, "data compressed by bzip2", compressed},
    {"\xFD"
     "7zXZ\0"sv,
     "data compressed by xz", compressed},
    {"\x28\xB5\x2F\xFD"sv, "data compressed by zstd", compressed},
    {"PK\x03\x04"sv, "a zip archive", "unpack it first"},
    {"\x7F"
     "ELF"sv,
     "a program or library", ""},
    {"MZ\x90\0"sv, "a program or library", ""},
    {"RIFF"sv, "a RIFF file (sound or video)", ""},
    {"<?xml"sv, "XML", ""},
    {"<!DOCTYPE"sv, "HTML or XML", ""},
    {"<html"sv, "HTML", ""},
    {"\xFF\xFE\0\0"sv, "UTF-32 text", otherEncoding},
    {"\0\0\xFE\xFF"sv, "UTF-32 text", otherEncoding},
    {"\xFF\xFE"sv, "UTF-16 text", otherEncoding},
    {"\xFE\xFF"sv, "UTF-16 text", otherEncoding},
};

/// Returns whether every second of the first characters is a NUL, as in UTF-16 without a mark.
bool isUtf16(std::string_view content) {
    constexpr size_t examined = 8;
    if (content.size() < examined) {
        return false;
    }
    for (size_t i = 0; i < examined; i += 2) {
        const bool isPair = (content[i] == '\0') != (content[i + 1] == '\0');
        if (!isPair || (content[i] == '\0') != (content[0] == '\0')) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<ForeignFile> recogniseForeignFile(std::string_view content, Format format) {
    for (const Signature& signature : signatures) {
        if (content.starts_with(signature.lead)) {
            return ForeignFile{signature.name, signature.hint};
        }
    }
    if (isUtf16(content)) {
        return ForeignFile{"UTF-16 text", otherEncoding};
    }
    const std::optional<Format> certain = formatOfContent(content);
    if (certain == Format::binary && format != Format::binary) {
        return ForeignFile{"a binary file of KEL", "read it with \"--from binary\""};
    }
    const bool hasText = certain && *certain != Format::binary &&
                         content.substr(0, content.find('\n')).find('\0') == std::string_view::npos;
    if (format == Format::binary && hasText) {
        const std::string name = nameOf(*certain);
        return ForeignFile{*certain == Format::json ? "JSON" : "text",
                           "read it with \"--from " + name + '"'};
    }
    return std::nullopt;
}

} // namespace kel::tool
