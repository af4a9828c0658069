/// \file
/// The table of all commands.
#pragma once

#include "command/Command.h"

#include <span>
#include <string_view>

namespace kel::tool {

/// Returns all commands in the order in which help lists them.
std::span<const CommandEntry* const> allCommands();

/// Returns the command of the name, or null if no command has it.
const CommandEntry* commandNamed(std::string_view name);

} // namespace kel::tool
