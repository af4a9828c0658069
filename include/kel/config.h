/// \file
/// Export, calling-convention and slot-order macros, and the version of the library.
///
/// Every public header includes this one. It includes nothing but <stdint.h> and <stddef.h>, so a
/// host needs no part of the C++ standard library to compile against KEL.
#pragma once

#include <stddef.h>
#include <stdint.h>

#define KEL_VERSION_MAJOR 1
#define KEL_VERSION_MINOR 0
#define KEL_VERSION_PATCH 0
#define KEL_VERSION_STRING "1.0.0"

#if defined(_WIN32)
#if defined(KEL_BUILDING) || defined(KEL_STATIC)
#define KEL_API /* the .def file is the export list */
#else
#define KEL_API __declspec(dllimport)
#endif
#else
#define KEL_API __attribute__((visibility("default")))
#endif

/// The calling convention of every exported function: standard-call on 32-bit Windows, the
/// platform's own elsewhere.
#if defined(_WIN32) && (defined(_M_IX86) || defined(__i386__))
#define KEL_CALL __stdcall
#else
#define KEL_CALL
#endif

/// Declares the overloads of one name in slot order. The Microsoft ABI lays adjacent overloads out
/// in reverse order of declaration; reversing them there keeps one slot order for all compilers.
#if defined(_MSC_VER)
#define KEL_SLOTS_2(a, b) b a
#define KEL_SLOTS_3(a, b, c) c b a
#define KEL_SLOTS_5(a, b, c, d, e) e d c b a
#else
#define KEL_SLOTS_2(a, b) a b
#define KEL_SLOTS_3(a, b, c) a b c
#define KEL_SLOTS_5(a, b, c, d, e) a b c d e
#endif
