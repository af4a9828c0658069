#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/KelWriter.h"
#include "document/Saving.h"
#include "document/ShownValues.h"
#include "failures/FailureReport.h"
#include "losses/DocumentScan.h"
#include "system/System.h"
#include "words/PaintedText.h"
#include "words/SafeText.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr const char* showNotes =
    R"(Prints the text form, even if it cannot be read back: strings with double quotes are printed
unchanged, a memory block is printed as its size, and a double with six decimals. A warning lists
each place whose print is not exact: memory blocks, and doubles that need more decimals. "kel
convert --to json FILE -" is always exact. On a terminal the text is coloured and shown by the
program that the environment variable PAGER names, or by less.

Examples:
  kel show settings.kelb
  kel show *.kelb
  kel show --from json < settings.json)";

class Show : public Command {
public:
    void describe(CommandLine& line) override {
        line.inputs(inputs_);
        line.from(from_);
        line.flag("--no-pager", isUnpaged_, "Print to a terminal without a pager");
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        int worst = 0;
        for (const std::string& name : inputs_) {
            try {
                showFile(name, console);
            } catch (...) {
                const Trouble trouble = reportFailure(console);
                worst = std::max(worst, exitStatus(trouble));
                if (trouble == Trouble::unwritten) {
                    break; // the other files would not be seen either
                }
            }
        }
        try {
            finishPager();
        } catch (...) {
            worst = std::max(worst, exitStatus(reportFailure(console)));
        }
        return worst;
    }

private:
    void showFile(const std::string& name, Console& console) {
        console.begin(Work::reading, name);
        Content content = readContent(name, from_);
        const size_t size = content.bytes.size();
        Losses losses;
        Input input = readInput(std::move(content), name, std::nullopt, losses);
        warnOfLosses(losses, name, input, console);
        refuseUnshowable(input.document, name, maxOutput_.value_or(usualOutputLimit(size)));
        warnOfInexactText(input.document, name, console);
        const bool isPaged = !isUnpaged_ && isTerminal(stdout);
        const Painter painter = console.painterFor(stdout);
        if (isTerminal(stdout)) {
            put(painted(forTerminal(textOf(input.document)), painter), isPaged, console);
        } else if (painter.isOn()) {
            put(painted(textOf(input.document), painter), isPaged, console);
        } else {
            writeTo("-", console,
                    [&](std::FILE* file) { writeKel(input.document, Format::text, file); });
        }
    }

    /// Prints the text, or lets the pager show it after what it shows already.
    void put(const std::string& text, bool isPaged, Console& console) {
        console.hush();
        if (isPaged && !pager_) {
            pager_.emplace();
        }
        if (!isPaged || pager_->file() == nullptr) {
            print(text);
            return;
        }
        paged_ += text;
        std::fwrite(text.data(), 1, text.size(), pager_->file()); // the person can leave any time
    }

    /// Waits for the pager. If it could not be started, prints what it should have shown.
    void finishPager() {
        if (pager_ && pager_->file() != nullptr && !pager_->finish()) {
            print(paged_);
        }
    }

    std::vector<std::string> inputs_;
    std::optional<Format> from_;
    bool isUnpaged_ = false;
    std::optional<Pager> pager_;
    std::string paged_; ///< all that the pager got
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry showCommand{"show", "Print a file as text", showNotes, makeCommand<Show>};

} // namespace kel::tool
