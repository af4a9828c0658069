// The entry point of the shared library on Windows. Only the library contains it: programs that
// link the objects directly, as the unit tests do, have their own entry point.

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

/// Turns off the system's notices of threads that begin and end, which the library does not need.
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        // The system refuses where the compiler's own run-time needs the notices. The library loads
        // all the same.
        DisableThreadLibraryCalls(library);
    }
    return TRUE;
}

#endif
