/// \file
/// Request: what the command line requests.
#pragma once

#include "command/Command.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kel::tool {

/// A command that is ready to run.
struct Request {
    std::unique_ptr<Command> command;
    std::optional<uint64_t> maxMemory; ///< in bytes
};

/// A text to print instead of running a command: help or version.
using Answer = std::string;

/// Reads the arguments of the command line, which begin with the name of the program.
/// \throws Failure usage
std::variant<Request, Answer> parseRequest(const std::vector<std::string>& arguments);

} // namespace kel::tool
