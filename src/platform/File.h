/// \file
/// stdio files with wide names and 64-bit positions on every platform.
#pragma once

#include <cstdint>
#include <cstdio>

namespace kel::platform {

/// Opens a file. The name consists of bytes on Linux and is UTF-8 on Windows; the mode is the one
/// that fopen takes.
/// \return null when it cannot be opened, also for a null name
std::FILE* openFile(const char* name, const char* mode);

/// Returns the current position, or -1 when the file has no positions (a pipe).
int64_t tell(std::FILE* file);

/// Moves to an absolute position. \return false on failure
bool seek(std::FILE* file, int64_t position);

} // namespace kel::platform
