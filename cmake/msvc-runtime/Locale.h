/// \file
/// Stands for declarations of locale functions that mingw-w64's headers lack and libc++ uses. Every
/// source is compiled as if it included this file, and FromChars.h, first.
#pragma once

#ifdef __cplusplus
#include <stdlib.h>

extern "C" {
float __cdecl _strtof_l(const char* text, char** end, _locale_t locale);
int __cdecl ___mb_cur_max_func(void);

static inline long double _strtold_l(const char* text, char** end, _locale_t locale) {
    return _strtod_l(text, end, locale); // a long double is a double here
}

static inline int ___mb_cur_max_l_func(_locale_t) {
    return ___mb_cur_max_func();
}
}

#include "FromChars.h"
#endif
