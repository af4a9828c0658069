#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "dump/RecordDump.h"
#include "failures/Failure.h"
#include "words/Printer.h"

namespace kel::tool {

namespace {

constexpr const char* dumpNotes =
    R"(Prints a line for each record of a binary file:

  offset  size  name: kind contents  #identity

The offset is that of the record, the size includes its header and everything in it, and neither
counts the name. Lines are indented by depth; below 20 levels, the depth is written in parentheses.
"reference to 34" means that the value is the one whose record is at offset 34. "cut off" marks a
container that should be longer than the bytes around it.

A damaged file is printed up to the damage. The message then has the offset and the reason, and the
exit status is 3.

Examples:
  kel dump settings.kelb
  kel dump damaged.kelb | tail -3           the last sound records
  kel dump settings.kelb | grep reference   what is shared
  kel convert --to binary settings.kel - | kel dump)";

class DumpCommand : public Command {
public:
    void describe(CommandLine& line) override { line.input(input_); }

    int run(Console& console) override {
        console.begin(Work::reading, input_);
        const Content content = mapContent(input_, std::nullopt);
        // A damaged file need not begin like binary, but its name can show what it should be. An
        // empty one can be anything.
        if (content.bytes.size() > 0 && content.format != Format::binary &&
            formatOfName(input_) != Format::binary) {
            const std::string format = nameOf(content.format);
            throw Failure{Trouble::refused,
                          input_ + ": this is " + format +
                              ", which has no records; use kel show to look at it, or pipe the "
                              "output of kel convert --to binary to kel dump"};
        }
        Printer printer(console);
        const std::optional<RecordFault> fault =
            dumpRecords(content.bytes, [&printer](std::string_view line) { printer.put(line); });
        printer.finish();
        if (fault) {
            throw Failure{Trouble::malformed, input_ + ": offset " + std::to_string(fault->offset) +
                                                  ": " + fault->reason};
        }
        return 0;
    }

private:
    std::string input_;
};

} // namespace

extern const CommandEntry dumpCommand{"dump", "Print the records of a binary file", dumpNotes,
                                      makeCommand<DumpCommand>};

} // namespace kel::tool
