#include "command/Command.h"
#include "command/CommandLine.h"
#include "command/CommandTable.h"
#include "command/Request.h"
#include "document/Saving.h"

namespace kel::tool {

namespace {

constexpr const char* helpNotes = R"(Prints what "kel COMMAND --help" prints.

Examples:
  kel help
  kel help convert)";

class Help : public Command {
public:
    void describe(CommandLine& line) override {
        line.optionalArgument("COMMAND", name_, "Command to describe (default: all, in short)");
    }

    int run(Console&) override {
        if (!name_) {
            print(generalHelp());
            return 0;
        }
        const CommandEntry* entry = commandNamed(*name_);
        if (entry == nullptr) {
            refuseCommand(*name_);
        }
        print(helpOf(*entry));
        return 0;
    }

private:
    std::optional<std::string> name_;
};

} // namespace

extern const CommandEntry helpCommand{"help", "Describe a command", helpNotes, makeCommand<Help>};

} // namespace kel::tool
