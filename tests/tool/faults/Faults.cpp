// A library for LD_PRELOAD that makes one call of a process fail: its Nth allocation, or its Nth
// system call of a kind. It belongs to Linux on x86.
//
// KEL_FAULT holds "CALL:N:HOW", with two more forms for allocations:
//
//     CALL  malloc, read, write, open, fsync, rename, close, getrandom
//     N     the number of the call, from 1
//     HOW   an errno, "short" for fewer bytes than requested, or "kill" for a process that ends
//           before the call; "once" or "on" for one allocation or for all from the Nth on
//
// KEL_FAULT_COUNTS names a file that gets the number of calls of each kind when the process exits.
// Calls are counted from the moment when the program's own initializers are about to run. When a
// process that counts the code it reaches opens the file to add its counts, its own work is done.
//
// Allocations are replaced by symbol. The C library makes its system calls without symbols, so a
// seccomp filter turns them into a signal, whose handler decides about the call. The filter lets
// the handler's own calls through, which it recognises by a number in their last argument.

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* storage, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

constexpr long letThrough = 0x4B454C21;
constexpr int cannotInject = 99; // the status of a process without a filter

/// The kinds of calls, and how many of each there were.
struct Kind {
    const char* name;
    long count;
};
Kind kinds[] = {{"malloc", 0}, {"read", 0},   {"write", 0}, {"open", 0},
                {"fsync", 0},  {"rename", 0}, {"close", 0}, {"getrandom", 0}};
Kind& allocations = kinds[0];

enum class How { fail, shorten, kill, failFromHere };

bool isArmed = false;
bool isDone = false;
const char* faultKind = "";
long faultNumber = 0;
How how = How::fail;
int reason = 0;

long direct(long number, long a = 0, long b = 0, long c = 0, long d = 0, long e = 0) {
    const long result = syscall(number, a, b, c, d, e, letThrough);
    return result < 0 ? -errno : result;
}

/// Counts a call. \return whether it is the one to change
bool isFault(Kind& kind) {
    if (isDone) {
        return false;
    }
    ++kind.count;
    if (std::strcmp(kind.name, faultKind) != 0) {
        return false;
    }
    if (kind.count == faultNumber && how == How::kill) {
        direct(SYS_kill, direct(SYS_getpid), SIGKILL);
    }
    return kind.count == faultNumber || (how == How::failFromHere && kind.count > faultNumber);
}

bool isFailedAllocation() {
    if (!isArmed || !isFault(allocations)) {
        return false;
    }
    errno = ENOMEM;
    return true;
}

/// A system call and the kind under which it is counted.
struct Trapped {
    long number;
    int kind;
};
constexpr Trapped trapped[] = {
    {SYS_read, 1},   {SYS_write, 2},    {SYS_writev, 2},    {SYS_open, 3},
    {SYS_openat, 3}, {SYS_fsync, 4},    {SYS_fdatasync, 4}, {SYS_rename, 5},
    {SYS_close, 6},  {SYS_renameat, 5}, {SYS_renameat2, 5}, {SYS_getrandom, 7},
};
constexpr size_t trappedCount = sizeof trapped / sizeof trapped[0];

#if defined(__x86_64__)
constexpr int resultRegister = REG_RAX;
constexpr int argumentRegisters[] = {REG_RDI, REG_RSI, REG_RDX, REG_R10, REG_R8};
#else
constexpr int resultRegister = REG_EAX;
constexpr int argumentRegisters[] = {REG_EBX, REG_ECX, REG_EDX, REG_ESI, REG_EDI};
#endif

/// Returns whether a system call opens a file to add the counts of the code that was reached.
bool opensCounts(long call, const long* arguments) {
    if (call != SYS_open && call != SYS_openat) {
        return false;
    }
    const long* name = arguments + (call == SYS_open ? 0 : 1);
    return (name[1] & O_ACCMODE) == O_RDWR &&
           std::strstr(reinterpret_cast<const char*>(*name), ".profraw") != nullptr;
}

/// Makes the trapped call or lets it fail, and sets its result.
void decide(int /*signal*/, siginfo_t* info, void* context) {
    const int before = errno;
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    long arguments[5];
    for (int i = 0; i < 5; ++i) {
        arguments[i] = static_cast<long>(registers[argumentRegisters[i]]);
    }
    isDone = isDone || opensCounts(info->si_syscall, arguments);
    long result = 0;
    bool isMade = true;
    for (const Trapped& call : trapped) {
        if (call.number == info->si_syscall && isFault(kinds[call.kind])) {
            if (how == How::shorten && call.number != SYS_writev) {
                const bool isRandom = call.number == SYS_getrandom;
                long& size = arguments[isRandom ? 1 : 2];
                size = size > 1 ? size / 2 : size;
            } else {
                isMade = false;
                // A file is closed even if closing it reports an error.
                if (call.number == SYS_close) {
                    direct(call.number, arguments[0]);
                }
            }
        }
    }
    result = isMade ? direct(info->si_syscall, arguments[0], arguments[1], arguments[2],
                             arguments[3], arguments[4])
                    : -reason;
    registers[resultRegister] = static_cast<greg_t>(result);
    errno = before;
}

bool trapSystemCalls() {
    sock_filter filter[2 * trappedCount + 4];
    size_t size = 0;
    const auto add = [&](unsigned code, unsigned value, unsigned ifTrue, unsigned ifFalse) {
        filter[size++] = {static_cast<uint16_t>(code), static_cast<uint8_t>(ifTrue),
                          static_cast<uint8_t>(ifFalse), value};
    };
    constexpr unsigned load = BPF_LD | BPF_W | BPF_ABS;
    constexpr unsigned jumpIfEqual = BPF_JMP | BPF_JEQ | BPF_K;
    constexpr unsigned end = BPF_RET | BPF_K;
    add(load, offsetof(seccomp_data, args) + 5 * sizeof(uint64_t), 0, 0);
    add(jumpIfEqual, letThrough, trappedCount + 1, 0);
    add(load, offsetof(seccomp_data, nr), 0, 0);
    for (size_t i = 0; i < trappedCount; ++i) {
        const auto toTrap = static_cast<unsigned>(trappedCount - i);
        add(jumpIfEqual, static_cast<unsigned>(trapped[i].number), toTrap, 0);
    }
    add(end, SECCOMP_RET_ALLOW, 0, 0);
    add(end, SECCOMP_RET_TRAP, 0, 0);
    const sock_fprog program = {static_cast<unsigned short>(size), filter};
    struct sigaction action = {};
    action.sa_sigaction = decide;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    return sigaction(SIGSYS, &action, nullptr) == 0 &&
           prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// Reads KEL_FAULT into the variables above.
void readFault() {
    static char text[64];
    const char* given = std::getenv("KEL_FAULT");
    if (given == nullptr || std::strlen(given) >= sizeof text) {
        return;
    }
    std::strcpy(text, given);
    char* number = std::strchr(text, ':');
    char* manner = number == nullptr ? nullptr : std::strchr(number + 1, ':');
    if (manner == nullptr) {
        return;
    }
    *number++ = '\0';
    *manner++ = '\0';
    faultKind = text;
    faultNumber = std::atol(number);
    how = std::strcmp(manner, "short") == 0  ? How::shorten
          : std::strcmp(manner, "kill") == 0 ? How::kill
          : std::strcmp(manner, "on") == 0   ? How::failFromHere
                                             : How::fail;
    reason = std::atoi(manner);
}

__attribute__((constructor)) void arm() {
    readFault();
    if (!trapSystemCalls()) {
        _exit(cannotInject);
    }
    isArmed = true;
}

/// Writes the counts, one "KIND N" on each line.
__attribute__((destructor)) void report() {
    isArmed = false;
    const char* name = std::getenv("KEL_FAULT_COUNTS");
    if (name == nullptr) {
        return;
    }
    const long file = direct(SYS_openat, AT_FDCWD, reinterpret_cast<long>(name),
                             O_WRONLY | O_CREAT | O_TRUNC, 0666);
    for (const Kind& kind : kinds) {
        char digits[24];
        char* at = digits + sizeof digits;
        *--at = '\n';
        long rest = kind.count;
        do {
            *--at = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest > 0);
        *--at = ' ';
        direct(SYS_write, file, reinterpret_cast<long>(kind.name),
               static_cast<long>(std::strlen(kind.name)));
        direct(SYS_write, file, reinterpret_cast<long>(at), digits + sizeof digits - at);
    }
    direct(SYS_close, file);
}

} // namespace

// The build hides symbols by default, and a hidden one would replace nothing.
#pragma GCC visibility push(default)

extern "C" {

void* malloc(size_t size) {
    return isFailedAllocation() ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return isFailedAllocation() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* storage, size_t size) {
    return isFailedAllocation() ? nullptr : __libc_realloc(storage, size);
}

void* memalign(size_t alignment, size_t size) {
    return isFailedAllocation() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** storage, size_t alignment, size_t size) {
    void* got = memalign(alignment, size);
    if (got == nullptr) {
        return ENOMEM;
    }
    *storage = got;
    return 0;
}
}

#pragma GCC visibility pop
