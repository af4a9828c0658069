#include "DocumentScan.h"
#include "Input.h"
#include "Saving.h"
#include "command/Command.h"
#include "command/CommandLine.h"

namespace kel::tool {

namespace {

constexpr const char* notes =
    R"(Prints the text form, even if it cannot be read back: strings with double quotes are printed
unchanged, and a memory block is printed as its size.

Examples:
  kel show settings.kelb
  kel show --from json - < settings.json)";

class Show : public Command {
public:
    void describe(CommandLine& line) override {
        line.input(input_);
        line.from(from_);
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        console.begin(Work::reading, input_);
        Content content = readContent(input_, from_);
        const size_t size = content.bytes.size();
        Losses losses;
        Input input = readInput(std::move(content), input_, std::nullopt, losses);
        if (losses.count() > 0) {
            console.say("warning: " + listOf(losses, input_, input, "values"));
        }
        showDocument(input.document, input_, maxOutput_.value_or(usualOutputLimit(size)), console);
        return 0;
    }

private:
    std::string input_;
    std::optional<Format> from_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry showCommand{"show", "Print a file as text", notes, makeCommand<Show>};

} // namespace kel::tool
