/// \file
/// Fresh GUIDs for the identities of objects.
#pragma once

#include <kel/JHashCode.h>

namespace kel::platform {

/// Draws a GUID into out; false when none can be had.
using GuidSource = bool (*)(JHashCode& out);

/// A fresh GUID from the system's own call on Windows; elsewhere a version 4 GUID from a generator
/// of each thread's own, which is keyed by the kernel and keyed anew in a forked child, so no two
/// threads or processes ever share a sequence.
/// \return false when the system fails
bool createGuid(JHashCode& out);

/// Replaces the source of createGuid (null: the platform's own) and returns the one before.
/// For tests.
GuidSource exchangeGuidSource(GuidSource source);

} // namespace kel::platform
