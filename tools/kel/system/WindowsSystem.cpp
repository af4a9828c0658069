// The tool's operating-system interface for Windows.

#include "system/System.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <shellapi.h>

namespace kel::tool {

namespace {

namespace fs = std::filesystem;

constexpr UINT interrupted = 0xC000013A; // STATUS_CONTROL_C_EXIT

std::wstring wide(const std::string& utf8) {
    // A name that is not valid UTF-8 names no file; the replacement keeps it from naming another.
    const int size = static_cast<int>(utf8.size()); // from a command line, so it is short
    std::wstring text(utf8.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), size);
    text.resize(static_cast<size_t>(length));
    return text;
}

std::string narrow(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back(); // the NUL
    return utf8;
}

HANDLE handleOf(std::FILE* file) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
}

/// Returns the reason of the system call that failed last, for errno.
int lastReason() {
    switch (GetLastError()) {
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return EEXIST;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
        return ENOENT;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return ENOSPC;
    case ERROR_NOT_ENOUGH_MEMORY:
        return ENOMEM;
    case ERROR_TOO_MANY_OPEN_FILES:
        return EMFILE;
    default:
        return EACCES;
    }
}

/// Makes a stdio file that closes the handle. \return null with errno set for no handle
std::FILE* fileOf(HANDLE handle, const char* mode) {
    if (handle == INVALID_HANDLE_VALUE) {
        errno = lastReason();
        return nullptr;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_BINARY);
    if (descriptor < 0) {
        CloseHandle(handle);
        return nullptr;
    }
    std::FILE* file = _fdopen(descriptor, mode);
    if (file == nullptr) {
        _close(descriptor);
    }
    return file;
}

std::FILE* openNamed(const std::string& name, const wchar_t* mode) {
    const std::wstring path = wide(name);
    std::FILE* file = _wfopen(path.c_str(), mode);
    if (file == nullptr && errno == EACCES) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        const bool isFolder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        errno = isFolder ? EISDIR : EACCES;
    }
    return file;
}

/// Creates a file in the folder for temporary files. It usually remains in the system's cache, and
/// is deleted when it is closed, however the process ends. \return null with errno set
std::FILE* openScratch() {
    wchar_t folder[MAX_PATH + 1];
    wchar_t name[MAX_PATH];
    if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"kel", 0, name) == 0) {
        errno = lastReason();
        return nullptr;
    }
    std::FILE* file =
        fileOf(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr),
               "w+b");
    if (file == nullptr) {
        const int reason = errno;
        DeleteFileW(name);
        errno = reason;
    }
    return file;
}

/// Returns an empty file in place of a file in memory, which Windows does not have. The whole
/// process has only one, because a new one takes long. \return null with errno set
std::FILE* emptyScratch() {
    static std::FILE* const file = openScratch();
    if (file != nullptr) {
        std::rewind(file);
        _chsize_s(_fileno(file), 0);
    }
    return file;
}

/// The file that the handler of interruptions has to remove, or empty. The handler runs in a thread
/// of its own.
std::wstring temporaryName;
std::mutex temporaryMutex;

UINT codePageBefore = 0;

void restoreCodePage() {
    if (codePageBefore != 0) {
        SetConsoleOutputCP(codePageBefore);
    }
}

/// Removes the temporary file and ends the process with the status that it has without a handler.
BOOL WINAPI endByInterruption(DWORD /*reason*/) {
    const std::lock_guard lock(temporaryMutex);
    removeTemporary();
    restoreCodePage();
    ExitProcess(interrupted);
    return TRUE;
}

} // namespace

std::vector<std::string> argumentsOf(int /*argc*/, const char* const* /*argv*/) {
    int count = 0;
    wchar_t** texts = CommandLineToArgvW(GetCommandLineW(), &count);
    if (texts == nullptr) {
        throw std::bad_alloc();
    }
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        arguments.push_back(narrow(texts[i]));
    }
    LocalFree(static_cast<HLOCAL>(texts));
    return arguments;
}

void prepareProcess() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    // Messages and the text form are UTF-8. The console is the user's: it gets its code page back.
    codePageBefore = GetConsoleOutputCP();
    if (codePageBefore != 0 && SetConsoleOutputCP(CP_UTF8) != 0) {
        std::atexit(restoreCodePage);
    }
}

bool limitMemory(uint64_t /*bytes*/) {
    // A job object could, but not under Wine, where this could not be tested.
    return false;
}

bool isTerminal(std::FILE* file) {
    // GetConsoleMode fails for anything but a console, and old consoles refuse the mode.
    DWORD mode = 0;
    return GetConsoleMode(handleOf(file), &mode) != 0 &&
           SetConsoleMode(handleOf(file), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool isUnread() {
    // After a failure to write to a pipe: a pipe has no other one.
    return GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_PIPE;
}

// The pager that comes with Windows shows neither UTF-8 nor colours.
Pager::Pager() : file_(nullptr) {
    if (const wchar_t* named = _wgetenv(L"PAGER"); named != nullptr && *named != L'\0') {
        file_ = _wpopen(named, L"wb");
    }
}

Pager::~Pager() {
    finish();
}

bool Pager::finish() {
    if (file_ == nullptr) {
        return false;
    }
    constexpr int notFound = 9009; // of the command interpreter, which also ends with 1 then
    const int status = _pclose(std::exchange(file_, nullptr));
    return status != -1 && status != 1 && status != notFound;
}

fs::path pathOf(const std::string& name) {
    return wide(name);
}

std::FILE* openToRead(const std::string& name) {
    return openNamed(name, L"rb");
}

std::FILE* openToWrite(const std::string& name) {
    return openNamed(name, L"wb");
}

bool seekTo(std::FILE* file, uint64_t offset) {
    return _fseeki64(file, static_cast<int64_t>(offset), SEEK_SET) == 0; // refuses negative numbers
}

int64_t offsetIn(std::FILE* file) {
    return _ftelli64(file);
}

bool mayWrite(const fs::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        errno = EACCES;
        return false;
    }
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        errno = lastReason();
        return errno == ENOENT;
    }
    CloseHandle(handle);
    return true;
}

MemoryToRead::MemoryToRead(std::string_view bytes, std::string_view rest) : file_(emptyScratch()) {
    if (file_ == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size() ||
        std::fwrite(rest.data(), 1, rest.size(), file_) != rest.size() || std::fflush(file_) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    std::rewind(file_);
}

MemoryToRead::~MemoryToRead() = default;

/// A pipe and a thread that moves everything from its other end into a text. Windows has no files
/// in memory, and a file on the disk would grow beyond any limit.
struct MemoryToWrite::Storage {
    int reading = -1;
    std::FILE* writing = nullptr;
    size_t limit = 0;
    std::string bytes;
    bool isTooMuch = false;
    std::thread reader;

    /// Collects the written bytes until the writing end is closed or there are too many. In the
    /// latter case nobody reads any more, and writing fails.
    void readAll() {
        char piece[16 * 1024];
        for (int got = 1; got > 0 && !isTooMuch;) {
            got = _read(reading, piece, sizeof piece);
            const size_t size = got > 0 ? static_cast<size_t>(got) : 0;
            isTooMuch = size > limit - bytes.size() || !keep(piece, size);
        }
        _close(reading);
    }

    bool keep(const char* piece, size_t size) {
        try {
            bytes.append(piece, size);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }
};

MemoryToWrite::MemoryToWrite(size_t limit) : storage_(new Storage) {
    int ends[2];
    if (_pipe(ends, 64 * 1024, _O_BINARY | _O_NOINHERIT) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    storage_->reading = ends[0];
    storage_->writing = _fdopen(ends[1], "wb");
    storage_->limit = limit;
    if (storage_->writing == nullptr) {
        const int reason = errno;
        _close(ends[0]);
        _close(ends[1]);
        throw std::system_error(reason, std::generic_category());
    }
    storage_->reader = std::thread([storage = storage_.get()] { storage->readAll(); });
}

MemoryToWrite::~MemoryToWrite() {
    if (storage_->writing != nullptr) {
        std::fclose(storage_->writing);
        storage_->reader.join();
    }
}

std::FILE* MemoryToWrite::file() {
    return storage_->writing;
}

std::optional<std::string> MemoryToWrite::take() {
    const bool isWritten = std::ferror(storage_->writing) == 0;
    const bool isClosed = std::fclose(storage_->writing) == 0;
    storage_->writing = nullptr;
    storage_->reader.join();
    if (!isWritten || !isClosed || storage_->isTooMuch) {
        return std::nullopt;
    }
    return std::move(storage_->bytes);
}

std::FILE* createTemporary(const fs::path& folder, fs::path& path) {
    constexpr int attempts = 1000;
    const std::wstring prefix = L".kel-" + std::to_wstring(GetCurrentProcessId()) + L'-';
    for (int attempt = 0; attempt < attempts; ++attempt) {
        path = folder / (prefix + std::to_wstring(attempt) + L".tmp");
        std::wstring name = path.native(); // no memory is needed once the file exists
        const std::lock_guard lock(temporaryMutex);
        // Sharing the deletion lets the handler of interruptions remove the open file. The right to
        // write permissions lets the file get those of the file that it replaces.
        const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE | WRITE_DAC,
                                          FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle != INVALID_HANDLE_VALUE) {
            if (temporaryName.empty()) {
                SetConsoleCtrlHandler(endByInterruption, TRUE);
            }
            std::FILE* file = fileOf(handle, "wb");
            if (file == nullptr) {
                DeleteFileW(name.c_str());
            } else {
                temporaryName.swap(name);
            }
            return file;
        }
        if (lastReason() != EEXIST) {
            errno = lastReason();
            return nullptr;
        }
    }
    errno = EEXIST;
    return nullptr;
}

void removeTemporary() {
    if (!temporaryName.empty()) {
        DeleteFileW(temporaryName.c_str()); // deleted as soon as the process has ended
    }
}

void keepTemporary() {
    const std::lock_guard lock(temporaryMutex);
    temporaryName.clear();
    SetConsoleCtrlHandler(endByInterruption, FALSE);
}

void copyPermissions(std::FILE* file, const fs::path& from) {
    DWORD size = 0;
    GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) {
        return;
    }
    std::vector<char> descriptor(size);
    if (GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size) !=
        0) {
        // If this is not allowed, the new file has the permissions that its folder gives it.
        SetKernelObjectSecurity(handleOf(file), DACL_SECURITY_INFORMATION, descriptor.data());
    }
}

bool synchronise(std::FILE* file) {
    return _commit(_fileno(file)) == 0;
}

std::error_code replaceFile(const fs::path& from, const fs::path& to) {
    const DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (MoveFileExW(from.c_str(), to.c_str(), how) != 0) {
        return {};
    }
    return {lastReason(), std::generic_category()};
}

std::error_code synchroniseFolder(const fs::path& /*folder*/) {
    return {}; // replacing a file already waits for the folder
}

} // namespace kel::tool
