// The entry point of the shared library on Windows. It is part of the library alone: programs that
// link the objects directly, as the unit tests do, have an entry point of their own.

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

/// Tells the system at process attach that the library does not care about threads that begin and
/// end.
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        // The system refuses where the compiler's own run-time needs the notices; that is no reason
        // not to load.
        DisableThreadLibraryCalls(library);
    }
    return TRUE;
}

#endif
