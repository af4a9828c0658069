#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/Saving.h"
#include "failures/Failure.h"
#include "failures/FailureReport.h"
#include "stats/RecordBytes.h"
#include "stats/StatsText.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr const char* statsNotes =
    R"(Prints the number of values of each kind, and the bytes that they take in each format. For a
binary file, the bytes in its own format are those of the file. All others are the bytes that
kel convert would write.

  depth           the greatest number of containers around a value
  shared          values in several places, and their places after the first one
  longest string  the first of the longest strings
  names           the bytes of names and of what separates them from their values
  further places  what shared values take at their places after the first one: references in
                  binary, and whole values in text and JSON
  cannot be held  the number of places that the format cannot hold; "~" then marks the bytes of
                  the rest
  >               not all places of shared values were counted, because there are too many

With --json, one file gives an indented object, and several files give an object on a line each.

Examples:
  kel stats settings.kelb
  kel stats --json settings.json
  kel stats --json *.kelb | jq -r '[.file, .values] | @tsv'
  kel convert --to binary settings.kel - | kel stats)";

class StatsCommand : public Command {
public:
    void describe(CommandLine& line) override {
        line.inputs(inputs_);
        line.flag("--json", isJson_, "Print JSON");
        line.from(from_);
    }

    int run(Console& console) override {
        int worst = 0;
        bool isFirst = true;
        for (const std::string& name : inputs_) {
            FileStats file;
            try {
                file = examine(name, console);
            } catch (...) {
                worst = std::max(worst, exitStatus(reportFailure(console)));
                continue;
            }
            const std::string text = isJson_   ? jsonOf(file, inputs_.size() == 1)
                                     : isFirst ? tableOf(file)
                                               : '\n' + tableOf(file);
            print(text);
            isFirst = false;
        }
        return worst;
    }

private:
    FileStats examine(const std::string& name, Console& console) const {
        console.begin(Work::reading, name);
        Content content = mapContent(name, from_);
        FileStats file{name, content.format, content.bytes.size(), {}};
        KindBytes records;
        if (content.format == Format::binary) {
            records = bytesOfRecords(content.bytes);
        }
        ValueStats values;
        Losses losses;
        visitRoots(std::move(content), name, values, losses);
        warnOfLosses(losses, name, file.format, values.stats().roots > 1, console);
        file.stats = values.stats();
        if (file.format == Format::binary) {
            replaceBytes(file.stats.kinds, records, Format::binary);
        }
        return file;
    }

    std::vector<std::string> inputs_;
    bool isJson_ = false;
    std::optional<Format> from_;
};

} // namespace

extern const CommandEntry statsCommand{"stats", "Count values and the bytes that they take",
                                       statsNotes, makeCommand<StatsCommand>};

} // namespace kel::tool
