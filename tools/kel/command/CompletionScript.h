/// \file
/// Scripts that let shells complete the tool's command lines.
#pragma once

#include <string>

namespace kel::tool {

/// Returns the script for "bash", "zsh" or "fish", made from the descriptions of all commands.
/// \throws Failure usage for any other shell
std::string completionScript(const std::string& shell);

} // namespace kel::tool
