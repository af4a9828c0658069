// Stands for the start-up object of a DLL: the function that the system calls, and atexit, which
// keeps a list for each module, because a DLL can be unloaded before the program ends.
#include "Initializers.h"

extern "C" {

/// The list of ucrtbase.dll, which owns what the pointers refer to.
struct ExitTable {
    Procedure* first;
    Procedure* last;
    Procedure* end;
};

int __cdecl _initialize_onexit_table(ExitTable* table);
int __cdecl _register_onexit_function(ExitTable* table, int(__cdecl* function)());
int __cdecl _execute_onexit_table(ExitTable* table);

int __stdcall DllMain(void* module, unsigned long reason, void* reserved);

static ExitTable exits;

int __cdecl atexit(Procedure function) {
    return _register_onexit_function(&exits, reinterpret_cast<int(__cdecl*)()>(function));
}

int __stdcall _DllMainCRTStartup(void* module, unsigned long reason, void* reserved) {
    constexpr unsigned long detach = 0;
    constexpr unsigned long attach = 1;
    if (reason == attach) {
        if (_initialize_onexit_table(&exits) != 0) {
            return 0;
        }
        runInitializers();
        runThreadInitializers();
    }
    const int loaded = DllMain(module, reason, reserved);
    if (reason == detach) {
        _execute_onexit_table(&exits);
    }
    return loaded;
}
}
