/// \file
/// Fresh GUIDs for the identities of objects.
#pragma once

#include <kel/JHashCode.h>

namespace kel::platform {

/// Draws a GUID into out. Returns false when that fails.
using GuidSource = bool (*)(JHashCode& out);

/// Draws a fresh GUID. On Windows the system makes it. Elsewhere it is a version 4 GUID from a
/// generator of the thread's own. The kernel supplies the generator's key, and a new key in a
/// forked child, so no two threads or processes ever share a sequence.
/// \return false when the system fails
bool createGuid(JHashCode& out);

/// Replaces the source of createGuid (null for the platform's own) and returns the previous one.
/// For tests.
GuidSource exchangeGuidSource(GuidSource source);

} // namespace kel::platform
