// Mapped files of Windows.

#include "failures/Failure.h"
#include "path/PathText.h"
#include "system/MappedFile.h"
#include "system/System.h"

#include <cstdint>
#include <io.h>
#include <limits>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace kel::tool {

namespace {

/// What the handler needs: the message about the file that was mapped last.
std::string cutShort;

/// Ends the process after the use of a byte that cannot be loaded. Windows does not shorten a file
/// that is mapped, but a file on another computer can become unreachable.
LONG WINAPI endByMissingByte(EXCEPTION_POINTERS* exception) {
    if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_IN_PAGE_ERROR) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    removeTemporary();
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), cutShort.data(), static_cast<DWORD>(cutShort.size()),
              &written, nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitStatus(Trouble::unreadable)));
    return EXCEPTION_CONTINUE_SEARCH;
}

size_t pageSize() {
    SYSTEM_INFO facts;
    GetSystemInfo(&facts);
    return facts.dwPageSize;
}

} // namespace

std::unique_ptr<MappedFile> MappedFile::of(std::FILE* file, const std::string& name) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    LARGE_INTEGER size;
    if (GetFileType(handle) != FILE_TYPE_DISK || GetFileSizeEx(handle, &size) == 0 ||
        size.QuadPart < static_cast<int64_t>(smallestMapping) ||
        static_cast<uint64_t>(size.QuadPart) > std::numeric_limits<size_t>::max()) {
        return nullptr;
    }
    const HANDLE mapping = CreateFileMappingW(handle, nullptr, PAGE_READONLY, 0, 0, nullptr);
    if (mapping == nullptr) {
        return nullptr;
    }
    const void* bytes = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
    CloseHandle(mapping); // the view keeps it
    if (bytes == nullptr) {
        return nullptr;
    }
    try {
        std::unique_ptr<MappedFile> mapped(
            new MappedFile({static_cast<const char*>(bytes), static_cast<size_t>(size.QuadPart)}));
        cutShort = "kel: " + withoutControls(name) + ": the file was cut short while it was read\n";
        SetUnhandledExceptionFilter(endByMissingByte);
        return mapped;
    } catch (...) {
        UnmapViewOfFile(bytes);
        throw;
    }
}

MappedFile::~MappedFile() {
    UnmapViewOfFile(bytes_.data());
}

void MappedFile::release(size_t begin, size_t end) const {
    const size_t page = pageSize();
    begin -= begin % page;
    end -= end % page;
    if (begin < end) {
        // Unlocking pages that are not locked removes them from the working set.
        VirtualUnlock(const_cast<char*>(bytes_.data()) + begin, end - begin);
    }
}

} // namespace kel::tool
