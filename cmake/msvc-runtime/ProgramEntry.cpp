// Stands for the start-up object of a console program: the function that the system calls, which
// hands the command line to main, and atexit, which is that of the C run-time.
#include "Initializers.h"

int main(int argc, char** argv);

extern "C" {

int __cdecl _configure_narrow_argv(int mode);
int __cdecl _initialize_narrow_environment();
int* __cdecl __p___argc();
char*** __cdecl __p___argv();
int __cdecl _crt_atexit(Procedure function);
__declspec(noreturn) void __cdecl exit(int status);

int __cdecl atexit(Procedure function) {
    return _crt_atexit(function);
}

void __cdecl mainCRTStartup() {
    constexpr int unexpanded = 1; // arguments with wildcards stay as they are
    _configure_narrow_argv(unexpanded);
    _initialize_narrow_environment();
    runInitializers();
    runThreadInitializers();
    exit(main(*__p___argc(), *__p___argv()));
}
}
