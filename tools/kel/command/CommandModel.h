/// \file
/// CommandModel: the options of a command as completion needs them.
#pragma once

#include "command/Command.h"

#include <string>
#include <vector>

namespace kel::tool {

/// An option of a command.
struct OptionModel {
    std::string shortName; ///< such as "-i", or empty
    std::string longName;  ///< such as "--force", or empty
    std::string purpose;
    bool takesValue = false;
    std::vector<std::string> words; ///< the values that it takes, if they are a few words
};

/// Returns the options of the command, also those that every command has.
std::vector<OptionModel> optionsOf(const CommandEntry& entry);

} // namespace kel::tool
