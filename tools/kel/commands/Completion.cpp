#include "command/Command.h"
#include "command/CommandLine.h"
#include "command/CompletionScript.h"
#include "document/Saving.h"

namespace kel::tool {

namespace {

constexpr const char* completionNotes =
    R"(Prints a script that lets the shell complete commands, options and their values. The packages
install it.

Examples:
  source <(kel completion bash)
  kel completion zsh > ~/.zsh/completions/_kel
  kel completion fish > ~/.config/fish/completions/kel.fish)";

class Completion : public Command {
public:
    void describe(CommandLine& line) override {
        line.argument("SHELL", shell_, "bash, zsh or fish");
    }

    int run(Console&) override {
        print(completionScript(shell_));
        return 0;
    }

private:
    std::string shell_;
};

} // namespace

extern const CommandEntry completionCommand{"completion",
                                            "Print a script for the completion of a shell",
                                            completionNotes, makeCommand<Completion>};

} // namespace kel::tool
