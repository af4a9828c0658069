// Stands for the objects that give a module thread-local variables: the directory by which the
// system makes a copy of them for every thread, and the calls at the begin and end of a thread.
#include "Initializers.h"

#include <stddef.h>

#pragma section(".tls", read, write)
#pragma section(".tls$ZZZ", read, write)
#pragma section(".CRT$XLA", read)
#pragma section(".CRT$XLC", read)
#pragma section(".CRT$XLD", read)
#pragma section(".CRT$XLZ", read)

// The offset, from the segment register FS, of the thread's array of copies.
__asm__(".globl __tls_array\n"
        ".set __tls_array, 0x2C");

extern "C" {

void* __cdecl malloc(size_t size);
void __cdecl free(void* block);

/// What the system calls when a thread begins or ends.
using ThreadNotice = void(__stdcall*)(void* module, unsigned long reason, void* reserved);

constexpr unsigned long processEnds = 0;
constexpr unsigned long threadBegins = 2;
constexpr unsigned long threadEnds = 3;

/// The destructors that a thread has to run, in blocks, the last block first.
struct Destructors {
    Destructors* next;
    int count;
    Procedure functions[30];
};
static __declspec(thread) Destructors* destructors = nullptr;

/// Registers the destructor of a thread-local variable. Returns 0, or -1 without memory.
int __cdecl __tlregdtor(Procedure function) {
    constexpr int room = sizeof(Destructors::functions) / sizeof(Procedure);
    if (destructors == nullptr || destructors->count == room) {
        auto* block = static_cast<Destructors*>(malloc(sizeof(Destructors)));
        if (block == nullptr) {
            return -1;
        }
        block->next = destructors;
        block->count = 0;
        destructors = block;
    }
    destructors->functions[destructors->count++] = function;
    return 0;
}

void __stdcall __dyn_tls_init(void*, unsigned long reason, void*) {
    if (reason == threadBegins) {
        runThreadInitializers();
    }
}

/// Runs the thread's destructors, the last one first. A destructor can register further ones.
static void __stdcall runDestructors(void*, unsigned long reason, void*) {
    if (reason != threadEnds && reason != processEnds) {
        return;
    }
    while (Destructors* block = destructors) {
        while (block->count > 0 && block == destructors) {
            block->functions[--block->count]();
        }
        if (block == destructors) {
            destructors = block->next;
            free(block);
        }
    }
}

__declspec(allocate(".CRT$XLA")) extern const ThreadNotice __xl_a = nullptr;
__declspec(allocate(".CRT$XLC")) extern const ThreadNotice __xl_c = __dyn_tls_init;
__declspec(allocate(".CRT$XLD")) extern const ThreadNotice __xl_d = runDestructors;
__declspec(allocate(".CRT$XLZ")) extern const ThreadNotice __xl_z = nullptr;

// The compiler puts thread-local variables between these two.
__declspec(allocate(".tls")) char* _tls_start = nullptr;
__declspec(allocate(".tls$ZZZ")) char* _tls_end = nullptr;

unsigned long _tls_index = 0;

/// The directory, which the linker finds by its name.
struct TlsDirectory {
    void* start;
    void* end;
    unsigned long* index;
    const ThreadNotice* notices;
    unsigned long zeros;
    unsigned long alignment;
};
extern const TlsDirectory _tls_used = {&_tls_start, &_tls_end, &_tls_index, &__xl_a + 1, 0, 0};
}
