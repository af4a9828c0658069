/// \file
/// KEL_ALWAYS_INLINE and KEL_NEVER_INLINE: for functions that the compiler judges wrongly.
#pragma once

/// Has a function compiled into its callers even if the compiler expects no gain. Constructors
/// and destructors of classes with virtual bases find each base through a table. Where the whole
/// object is known, all of that becomes a few constant stores.
#if defined(__GNUC__)
#define KEL_ALWAYS_INLINE [[gnu::always_inline]]
#else
#define KEL_ALWAYS_INLINE
#endif

/// Keeps a function out of its callers. A function that rarely takes its slow path would otherwise
/// save the registers of the slow path each time.
#if defined(__GNUC__)
#define KEL_NEVER_INLINE [[gnu::noinline]]
#else
#define KEL_NEVER_INLINE
#endif
