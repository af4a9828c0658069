/// \file
/// Macros for export, calling convention and slot order, and the version of the library.
///
/// Every public header includes this one. It includes only <stdint.h> and <stddef.h>, so a host can
/// compile against KEL without any part of the C++ standard library.
#pragma once

#include <stddef.h>
#include <stdint.h>

/// The version of the library that these headers belong to: numbers, and the same as text.
#define KEL_VERSION_MAJOR 1
#define KEL_VERSION_MINOR 1
#define KEL_VERSION_PATCH 0
#define KEL_VERSION_STRING "1.1.0"

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
/// platform's default elsewhere.
#if defined(_WIN32) && (defined(_M_IX86) || defined(__i386__))
#define KEL_CALL __stdcall
#else
#define KEL_CALL
#endif

/// Declares the overloads of one name, up to eight, in slot order: each with its semicolon, then a
/// comma. The Microsoft ABI lays adjacent overloads out in reverse order of declaration. The macro
/// reverses them there, so all compilers have the same slot order. A const and a non-const form are
/// overloads too.
///
///     KEL_SLOTS(
///         virtual void set(float value) = 0;,
///         virtual void set(double value) = 0;)
///
/// Missing declarations are empty. The outer macro exists for Microsoft's preprocessor, which
/// treats an inner __VA_ARGS__ as one argument until it is scanned again.
#define KEL_SLOTS(...) KEL_SLOTS_READ_AGAIN(KEL_SLOTS_ORDER(__VA_ARGS__, , , , , , , , ))
#define KEL_SLOTS_READ_AGAIN(declarations) declarations
#if defined(_MSC_VER)
#define KEL_SLOTS_ORDER(a, b, c, d, e, f, g, h, ...) h g f e d c b a
#else
#define KEL_SLOTS_ORDER(a, b, c, d, e, f, g, h, ...) a b c d e f g h
#endif
