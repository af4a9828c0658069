#include "command/CommandTable.h"

#include <algorithm>

namespace kel::tool {

extern const CommandEntry checkCommand;
extern const CommandEntry completionCommand;
extern const CommandEntry convertCommand;
extern const CommandEntry diffCommand;
extern const CommandEntry dumpCommand;
extern const CommandEntry findCommand;
extern const CommandEntry fmtCommand;
extern const CommandEntry getCommand;
extern const CommandEntry helpCommand;
extern const CommandEntry htmlCommand;
extern const CommandEntry mvCommand;
extern const CommandEntry rmCommand;
extern const CommandEntry setCommand;
extern const CommandEntry showCommand;
extern const CommandEntry statsCommand;

namespace {

// clang-format off
constexpr const CommandEntry* commands[] = {
    // What people look for first comes first.
    &convertCommand,
    &showCommand,
    &htmlCommand,
    &getCommand,
    &setCommand,
    &rmCommand,
    &mvCommand,
    &findCommand,
    &diffCommand,
    &checkCommand,
    &fmtCommand,
    &statsCommand,
    &dumpCommand,
    &completionCommand,
    &helpCommand,
};
// clang-format on

} // namespace

std::span<const CommandEntry* const> allCommands() {
    return commands;
}

const CommandEntry* commandNamed(std::string_view name) {
    const auto* found =
        std::find_if(std::begin(commands), std::end(commands),
                     [name](const CommandEntry* entry) { return name == entry->name; });
    return found != std::end(commands) ? *found : nullptr;
}

} // namespace kel::tool
