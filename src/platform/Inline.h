/// \file
/// KEL_ALWAYS_INLINE: a function whose call costs more than its work.
#pragma once

/// Has a function compiled into its callers even if the compiler expects no gain. Constructors
/// and destructors of classes with virtual bases find each base through a table. Where the whole
/// object is known, all of that becomes a few constant stores.
#if defined(__GNUC__)
#define KEL_ALWAYS_INLINE [[gnu::always_inline]]
#else
#define KEL_ALWAYS_INLINE
#endif
