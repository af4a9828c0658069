/// \file
/// Prints single values for people and for scripts.
#pragma once

#include "document/Document.h"
#include "system/Console.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kel::tool {

/// Warns of each place whose text form, as "kel show" prints it, is not its exact value.
/// \param name the name of the document in messages
void warnOfInexactText(const Document& document, const std::string& name, Console& console);

/// Prints the root values in text form on stdout. A Double alone is printed with the digits that it
/// needs. Reports each place whose print is not its exact value.
/// \param name the name of the values in messages
/// \param limit the greatest number of bytes to print
/// \throws Failure refused for a value that contains itself and beyond the limit
void showValues(const Document& values, const std::string& name, uint64_t limit, Console& console);

/// Returns the characters of a scalar without quotes, "null" for null, or nothing for a value
/// without such a form.
std::optional<std::string> rawTextOf(const KEL* value);

/// Returns whether the value is a memory block. Null is not.
bool isMemBlock(const KEL* value);

/// Writes the bytes of a memory block to stdout.
/// \param name the name of the block in messages
/// \throws Failure refused if stdout is a terminal
/// \throws Failure unwritten
void printBytes(const KEL& block, const std::string& name, Console& console);

/// Prints text that consists of the contents of a file. A terminal gets no control characters
/// except line ends and tabs.
/// \throws Failure unwritten
void printText(const std::string& text, Console& console);

} // namespace kel::tool
