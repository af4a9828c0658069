#include "DescriptorCheck.h"
#include "Failure.h"
#include "FailureReport.h"
#include "Input.h"
#include "command/Command.h"
#include "command/CommandLine.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr const char* notes =
    R"(Prints nothing for files without errors. An error in text or JSON names the file, the line
and the column and shows the line. An error in a binary file names the offset of the wrong field and
the path to the value. Only the first error of each file is reported, because what follows it depends
on what was meant. Checked structs are compared with their descriptors.
Each value that its descriptor does not allow is listed with its path and the allowed values, and
so is each variable descriptor that contradicts itself. The exit status is 1 if a file is malformed
or holds such a value, and 3 if a file cannot be read.

Examples:
  kel check settings.kel backup.kelb
  kel check settings.kel && kel convert settings.kel settings.kelb
  kel check --from text -)";

/// Reports where the document departs from the descriptors in it. \return whether it never does
bool areDescriptorsKept(const Document& document, const std::string& inputName, Console& console) {
    bool areKept = true;
    console.begin(Work::checking, inputName);
    try {
        checkDescriptors(document, [&](const std::string& violation) {
            areKept = false;
            console.say(inputName + ": " + violation);
        });
    } catch (Failure& failure) {
        failure.message = inputName + ": " + failure.message;
        throw;
    }
    return areKept;
}

class Check : public Command {
public:
    void describe(CommandLine& line) override {
        line.inputs(inputs_);
        line.from(from_);
    }

    int run(Console& console) override {
        int worst = 0;
        for (const std::string& name : inputs_) {
            worst = std::max(worst, checkFile(name, console));
        }
        return worst;
    }

private:
    /// Reports the errors in a file. \return the exit status for it
    int checkFile(const std::string& name, Console& console) const {
        int status = 0;
        try {
            console.begin(Work::reading, name);
            Losses lostInReading;
            const Input input =
                readInput(readContent(name, from_), name, std::nullopt, lostInReading);
            // Losses between JSON and values concern conversion, not the file itself.
            if (input.format == Format::binary && lostInReading.count() > 0) {
                console.say(tool::describe(
                    lostInReading, name + ": names are repeated:", input.document.roots().size()));
                status = exitStatus(Trouble::refused);
            }
            if (input.mayHoldDescriptors && !areDescriptorsKept(input.document, name, console)) {
                status = exitStatus(Trouble::refused);
            }
        } catch (...) {
            const Trouble trouble = reportFailure(console);
            const bool isWrong = trouble == Trouble::malformed;
            status = exitStatus(isWrong ? Trouble::refused : trouble);
        }
        return status;
    }

    std::vector<std::string> inputs_;
    std::optional<Format> from_;
};

} // namespace

extern const CommandEntry checkCommand{"check", "Read files and report errors in them", notes,
                                       makeCommand<Check>};

} // namespace kel::tool
