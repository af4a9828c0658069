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

/// Returns whether createAssuredGuid can be called: from now on, on any thread of this process and
/// of those that it forks. Always returns false on Windows, where each draw can fail.
bool isGuidAssured();

/// Draws a GUID after isGuidAssured has returned true in this process. It cannot fail: if the
/// kernel does not supply another key, the key comes from one that it supplied before.
void createAssuredGuid(JHashCode& out);

/// Replaces the source of createGuid (null for the platform's own) and returns the previous one.
/// For tests.
GuidSource exchangeGuidSource(GuidSource source);

} // namespace kel::platform
