/// \file
/// KEL_HOT_THREAD_LOCAL: a thread-local variable that is read for every value.
#pragma once

/// Declares a thread-local variable of a few bytes that is reached without a call. The loader keeps
/// some room for such variables of libraries that it loads late. That room is small, so only the
/// few variables that every allocation reads are declared like this.
#if defined(__GNUC__) && !defined(_WIN32)
#define KEL_HOT_THREAD_LOCAL [[gnu::tls_model("initial-exec")]] thread_local
#else
#define KEL_HOT_THREAD_LOCAL thread_local
#endif
