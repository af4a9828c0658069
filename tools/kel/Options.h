/// \file
/// Options: the requests of the command line.
#pragma once

#include "Format.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kel::tool {

enum class Command { convert, show, check };

struct Options {
    Command command = Command::convert;
    std::vector<std::string> inputs; ///< one, except for check
    std::string output;              ///< for convert
    std::optional<Format> from;
    std::optional<Format> to;
    bool isForced = false;
    std::optional<uint64_t> maxMemory; ///< in bytes
    std::optional<uint64_t> maxOutput; ///< in bytes, for convert and show
};

/// A text to print instead of running a command: help or version.
using Answer = std::string;

/// Reads the arguments of the command line, which begin with the name of the program.
/// \throws Failure usage
std::variant<Options, Answer> parseOptions(const std::vector<std::string>& arguments);

} // namespace kel::tool
