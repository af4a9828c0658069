/// \file
/// Request: what the command line requests.
#pragma once

#include "command/Command.h"
#include "command/CommandLine.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace kel::tool {

/// A command that is ready to run.
struct Request {
    std::unique_ptr<Command> command;
    CommonOptions common;
};

/// A text to print instead of running a command: help or version.
using Answer = std::string;

/// Reads the arguments of the command line, which begin with the name of the program.
/// \throws Failure usage
std::variant<Request, Answer> parseRequest(const std::vector<std::string>& arguments);

/// Returns the help of the tool.
Answer generalHelp();

/// Returns the help of the command.
Answer helpOf(const CommandEntry& entry);

/// Reports a command that does not exist, with the one that was probably meant.
/// \throws Failure usage
[[noreturn]] void refuseCommand(const std::string& name);

} // namespace kel::tool
