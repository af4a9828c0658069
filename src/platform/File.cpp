// Positions have 64 bits on 32-bit Linux too. This line has to precede the first include.
#define _FILE_OFFSET_BITS 64

#include "platform/File.h"

#if defined(_WIN32)
#include <string>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <io.h>
#else
#include <sys/types.h>
#endif

namespace kel::platform {

#if defined(_WIN32)

namespace {

std::wstring widen(const char* text) {
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
    if (length <= 0) {
        return {};
    }
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, wide.data(), length);
    wide.resize(wide.size() - 1);
    return wide;
}

/// Returns whether the file has positions. On Windows the calls that report and change the position
/// of pipes and devices succeed with arbitrary results.
bool hasPositions(std::FILE* file) {
    return GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) == FILE_TYPE_DISK;
}

} // namespace

std::FILE* openFile(const char* name, const char* mode) {
    const std::wstring wideName = name == nullptr ? std::wstring() : widen(name);
    return wideName.empty() ? nullptr : _wfopen(wideName.c_str(), widen(mode).c_str());
}

int64_t tell(std::FILE* file) {
    return hasPositions(file) ? _ftelli64(file) : -1;
}

bool seek(std::FILE* file, int64_t position) {
    return hasPositions(file) && _fseeki64(file, position, SEEK_SET) == 0;
}

#else

std::FILE* openFile(const char* name, const char* mode) {
    return name == nullptr ? nullptr : std::fopen(name, mode);
}

int64_t tell(std::FILE* file) {
    return ftello(file);
}

bool seek(std::FILE* file, int64_t position) {
    static_assert(sizeof(off_t) >= sizeof position);
    return fseeko(file, position, SEEK_SET) == 0;
}

#endif

} // namespace kel::platform
