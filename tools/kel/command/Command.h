/// \file
/// Command: one of the commands of the tool.
#pragma once

#include "system/Console.h"

#include <memory>

namespace kel::tool {

class CommandLine;

/// A command with its options. It is made for one run.
class Command {
public:
    virtual ~Command() = default;

    /// Describes the arguments and options, and where their values are to be stored.
    virtual void describe(CommandLine& line) = 0;

    /// Carries out the command after the values were stored.
    /// \return the exit status if the work was completed
    /// \throws Failure for everything that stops it
    virtual int run(Console& console) = 0;
};

/// What is known about a command before it is made.
struct CommandEntry {
    const char* name;
    const char* purpose; ///< a few words, such as "Print a file as text"
    const char* notes;   ///< the rest of its help: rules and examples
    std::unique_ptr<Command> (*make)();
};

/// Makes a command of the type.
template <class Type> std::unique_ptr<Command> makeCommand() {
    return std::make_unique<Type>();
}

} // namespace kel::tool
