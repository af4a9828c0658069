/// \file
/// What the tool needs from the operating system beyond the C++ standard library. One source file
/// per system implements it; this one is free of the differences.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace kel::tool {

/// Lets a write to a closed pipe fail like any other write instead of ending the process.
void ignoreClosedPipes();

/// True when the file is a terminal.
bool isTerminal(std::FILE* file);

/// True when the file that the name leads to may be written, or does not exist.
bool mayWrite(const std::string& name);

/// The bytes as a file to read from. They stay the caller's and have to live as long as the file.
/// \return null when out of memory
std::FILE* openMemoryToRead(const char* bytes, size_t size);

/// A file to write to whose bytes go to the buffer; writing beyond its size fails.
/// \return null when out of memory
std::FILE* openMemoryToWrite(char* buffer, size_t size);

/// A new, empty file in the folder (empty for the current one), open for writing, with the usual
/// permissions of new files. A signal that ends the process removes the file.
/// \param[out] name the file's name with its folder
/// \return null with errno set when it cannot be made
std::FILE* createTemporary(const std::string& folder, std::string& name);

/// From now on a signal leaves the temporary file alone.
void keepTemporary();

/// Gives an open file the permissions and, where that is allowed, the owner of the named file. A
/// file that does not exist changes nothing.
void copyPermissions(std::FILE* file, const std::string& from);

/// Waits until the file's bytes are on the medium. \return false with errno set on failure
bool synchronise(std::FILE* file);

/// Waits until the folder's entries are on the medium, where the system can.
void synchroniseFolder(const std::string& folder);

} // namespace kel::tool
