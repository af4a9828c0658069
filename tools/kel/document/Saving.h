/// \file
/// Writes documents and other results.
#pragma once

#include "document/Input.h"
#include "identities/StableIdentities.h"
#include "losses/Losses.h"
#include "system/Console.h"
#include "json/JsonLayout.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

namespace kel::tool {

/// Lets the action write to the named file, or to stdout for "-". The file appears whole or not at
/// all.
/// \throws Failure with the name before the message of the action's failure
void writeTo(const std::string& name, Console& console,
             const std::function<void(std::FILE*)>& action);

/// Writes text to stdout. \throws Failure unwritten
void print(const std::string& text);

/// What is to be done with a document.
struct Saving {
    Format format;                          ///< of the output
    std::string output;                     ///< the name of the file, or "-"
    bool isForced = false;                  ///< whether what the format cannot hold is left out
    std::optional<uint64_t> maxOutput = {}; ///< the greatest number of bytes of text or JSON
    /// Whether the document is not exactly what was read, so that the reader's list for the output
    /// format is not enough.
    bool isEdited = false;
    JsonLayout layout = {};                       ///< of JSON
    const StableIdentities* identities = nullptr; ///< of binary; null for drawn ones
};

/// Writes the document that was read from an input, possibly changed since then. If its format
/// cannot hold everything, it is refused with the list of what would be lost, or, if that is
/// forced, changed so that it fits, with a warning.
/// \param input the document, which this function changes when it is forced
/// \param inputName its name in messages
/// \param inputSize the number of bytes that were read
/// \param losses what was lost in reading; for JSON that was not edited, also what the output
/// cannot
///        hold
/// \throws Failure refused or unwritten
void save(Input& input, const std::string& inputName, size_t inputSize, Losses losses,
          const Saving& saving, Console& console);

/// Refuses a document that cannot be shown as text.
/// \param limit the greatest number of bytes to show
/// \throws Failure refused for a value that contains itself and beyond the limit
void refuseUnshowable(Document& document, const std::string& inputName, uint64_t limit);

/// Returns the list of places that are lost on the way from one format to the other or the same.
std::string listOf(const Losses& losses, const std::string& inputName, size_t rootCount,
                   Format from, Format to);

/// Warns of what was lost in reading an input, if anything was.
void warnOfLosses(const Losses& losses, const std::string& inputName, Format format,
                  bool hasSeveralRoots, Console& console);

/// Does the same for an input that was read as a whole.
void warnOfLosses(const Losses& losses, const std::string& inputName, const Input& input,
                  Console& console);

} // namespace kel::tool
