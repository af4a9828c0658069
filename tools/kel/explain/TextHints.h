/// \file
/// What people who write text by hand often mean by something that text does not have.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kel::tool {

/// Returns the end of the run of characters that a person reads as one word: up to white space, a
/// bracket, a quote, a comma or an equals sign.
size_t endOfRun(std::string_view content, size_t at);

/// Returns the words of a line that begin at a place, or only the first one if they end in a name
/// that an equals sign follows.
std::string_view phraseAt(std::string_view content, size_t at);

/// Returns what is at a place, in words for `found ...`.
std::string foundInText(std::string_view content, size_t at);

/// Returns the number of bytes of what is at a place.
size_t lengthOfFound(std::string_view content, size_t at);

/// Returns a hint for something that is neither a value nor allowed at its place, or nothing.
std::string hintForStranger(std::string_view content, size_t at);

/// Returns a hint for a run of characters that begins like a number but is none.
std::string hintForNumber(std::string_view run);

/// Returns whether the run is nearly a hash code: hexadecimal digits and several dashes.
bool looksLikeHashCode(std::string_view run);

/// Returns the number of hexadecimal digits in the run.
size_t hexDigitsIn(std::string_view run);

} // namespace kel::tool
