/* Stands for the functions that Microsoft's headers define inline in terms of a few functions of
   ucrtbase.dll, and for the library of names without an underscore (oldnames.lib). */
#include <stdarg.h>
#include <stddef.h>

/* An option of the functions of ucrtbase.dll: the result is the length that the text would have. */
#define STANDARD_SNPRINTF 2ull

int __cdecl __stdio_common_vsprintf(unsigned long long, char*, size_t, const char*, void*, va_list);
int __cdecl __stdio_common_vsscanf(unsigned long long, const char*, size_t, const char*, void*,
                                   va_list);
int __cdecl __stdio_common_vfprintf(unsigned long long, void*, const char*, void*, va_list);
void* __cdecl __acrt_iob_func(unsigned);

int __cdecl vsnprintf(char* text, size_t size, const char* format, va_list list) {
    const int length = __stdio_common_vsprintf(STANDARD_SNPRINTF, text, size, format, 0, list);
    return length < 0 ? -1 : length;
}

int __cdecl vsprintf(char* text, const char* format, va_list list) {
    return vsnprintf(text, 0x7fffffff, format, list);
}

int __cdecl vfprintf(void* file, const char* format, va_list list) {
    return __stdio_common_vfprintf(0, file, format, 0, list);
}

int __cdecl vprintf(const char* format, va_list list) {
    return vfprintf(__acrt_iob_func(1), format, list);
}

#define FORWARD(call)                                                                              \
    va_list list;                                                                                  \
    va_start(list, format);                                                                        \
    const int result = call;                                                                       \
    va_end(list);                                                                                  \
    return result

int __cdecl snprintf(char* text, size_t size, const char* format, ...) {
    FORWARD(vsnprintf(text, size, format, list));
}

int __cdecl sprintf(char* text, const char* format, ...) {
    FORWARD(vsprintf(text, format, list));
}

int __cdecl fprintf(void* file, const char* format, ...) {
    FORWARD(vfprintf(file, format, list));
}

int __cdecl printf(const char* format, ...) {
    FORWARD(vprintf(format, list));
}

int __cdecl sscanf(const char* text, const char* format, ...) {
    FORWARD(__stdio_common_vsscanf(0, text, (size_t)-1, format, 0, list));
}

/* ALIAS(result, name, parameters, arguments): name calls _name. */
#define ALIAS(result, name, parameters, arguments)                                                 \
    result __cdecl _##name parameters;                                                             \
    result __cdecl name parameters {                                                               \
        return _##name arguments;                                                                  \
    }

ALIAS(int, read, (int file, void* bytes, unsigned count), (file, bytes, count))
ALIAS(int, write, (int file, const void* bytes, unsigned count), (file, bytes, count))
ALIAS(int, close, (int file), (file))
ALIAS(int, isatty, (int file), (file))
ALIAS(int, fileno, (void* file), (file))
ALIAS(void*, fdopen, (int file, const char* mode), (file, mode))
ALIAS(int, creat, (const char* name, int mode), (name, mode))
ALIAS(int, dup, (int file), (file))
ALIAS(int, dup2, (int file, int other), (file, other))
ALIAS(int, getpid, (void), ())
ALIAS(char*, strdup, (const char* text), (text))
