#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Formatting.h"
#include "document/Input.h"
#include "document/OutputBytes.h"
#include "document/Saving.h"
#include "document/TextExtras.h"
#include "failures/Failure.h"
#include "failures/FailureReport.h"
#include "findings/Unkept.h"
#include "losses/DocumentScan.h"
#include "path/PathText.h"
#include "system/System.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr const char* fmtNotes =
    R"(Prints text and JSON in the layout in which kel writes them: a value on each line, names in
order, numbers in one spelling. With -i, the files are changed instead, each whole or not at all.
A file that has the layout already is not written. With --check, nothing is written: the names of
the files that -i would change or refuse are printed, and the exit status is 1 if there are any.

Values do not hold everything. A text with comments, "#define", identities or "REF" is refused, and
so is JSON with repeated names, null in arrays, or other parts that kel convert lists as losses.
--force formats what the values hold. Binary has no layout. --compact and --indent choose another
layout of JSON; text has one.

Examples:
  kel fmt settings.kel                   print it
  kel fmt -i *.kel *.json                change files
  kel fmt --check *.kel *.json           for a commit hook
  kel fmt settings.json | diff settings.json -
  curl -s https://example.org/data.json | kel fmt --from json)";

class Fmt : public Command {
public:
    void describe(CommandLine& line) override {
        line.inputs(inputs_);
        line.flag("-i,--in-place", isInPlace_, "Change the files instead of printing them");
        line.flag("--check", isCheck_, "Print the names of the files that are laid out otherwise");
        line.flag("--force", isForced_, "Format what the values hold and leave out the rest");
        line.layout(layout_);
        line.from(from_);
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        if (isInPlace_ && isCheck_) {
            throw Failure{Trouble::usage, "--check writes nothing, so it excludes --in-place"};
        }
        if (isInPlace_ && std::find(inputs_.begin(), inputs_.end(), "-") != inputs_.end()) {
            throw Failure{Trouble::usage, "--in-place: stdin cannot be changed"};
        }
        int worst = 0;
        for (const std::string& name : inputs_) {
            try {
                worst = std::max(worst, formatFile(name, console));
            } catch (...) {
                worst = std::max(worst, exitStatus(reportFailure(console)));
            }
        }
        return worst;
    }

private:
    int formatFile(const std::string& name, Console& console) const {
        console.begin(Work::reading, name);
        Content content = mapContent(name, from_);
        switch (content.format) {
        case Format::text:
            return formatText(std::move(content), name, console);
        case Format::json:
            return formatJson(std::move(content), name, console);
        case Format::binary:
            break;
        }
        throw Failure{Trouble::refused,
                      name + ": binary has no layout; use kel show to print it as text"};
    }

    int formatText(Content content, const std::string& name, Console& console) const {
        const size_t size = content.bytes.size();
        const uint64_t limit =
            std::min(maxOutput_.value_or(usualOutputLimit(size)), usualOutputLimit(size));
        const TextExamination wanted{isInPlace_ || isCheck_, !isCheck_};
        const std::optional<bool> isSame = examineText(content.bytes, wanted, limit);
        if (!isSame) {
            return formatWholeText(std::move(content), name, console);
        }
        if (*isSame) {
            return 0;
        }
        if (isCheck_) {
            return list(name);
        }
        reportExtra(firstTextExtra(content.bytes), name);
        if (!isKept(content.bytes)) {
            return formatWholeText(std::move(content), name, console);
        }
        writeTo(output(name), console, [&](std::FILE* file) {
            layOutText(content.bytes, name,
                       [file](std::string_view text) { writeBytes(text, file); });
            content.bytes = {}; // the file can be replaced now
        });
        return 0;
    }

    int formatWholeText(Content content, const std::string& name, Console& console) const {
        const size_t size = content.bytes.size();
        Losses losses;
        Input input = readInput(Content(content), name, Format::text, losses);
        const std::optional<TextExtra> extra = firstTextExtra(content.bytes);
        const bool isSame =
            (isInPlace_ || isCheck_) && !extra && isFormattedText(input.document, content.bytes);
        if (isSame) {
            return 0;
        }
        if (isCheck_) {
            return list(name);
        }
        reportExtra(extra, name);
        refuseUnkept(content, input.document, name, isForced_, console);
        content.bytes = {}; // the file can be replaced now
        save(input, name, size, losses, {Format::text, output(name), isForced_, maxOutput_},
             console);
        return 0;
    }

    /// Refuses to lose a part of a text, unless that is forced.
    void reportExtra(const std::optional<TextExtra>& extra, const std::string& name) const {
        if (extra && !isForced_) {
            throw Failure{Trouble::refused, name + ':' + std::to_string(extra->line) + ": " +
                                                extra->words +
                                                " would be lost; nothing was written; use "
                                                "--force to format the rest"};
        }
    }

    /// Lays the JSON out twice: what would be lost is known only at its end, and the output takes
    /// more memory than reading takes time.
    int formatJson(Content content, const std::string& name, Console& console) const {
        const uint64_t limit = maxOutput_.value_or(usualOutputLimit(content.bytes.size()));
        const JsonLayout layout = layout_.value_or(JsonLayout());
        const LaidOut laidOut = layOutJson(content, name, layout, limit, nullptr);
        const bool isSame = laidOut.isSame && laidOut.losses.count() == 0;
        if (isSame && (isInPlace_ || isCheck_)) {
            return 0;
        }
        if (isCheck_) {
            return list(name);
        }
        reportLosses(laidOut, name, console);
        writeTo(output(name), console, [&](std::FILE* file) {
            layOutJson(content, name, layout, limit,
                       [file](std::string_view text) { writeBytes(text, file); });
            content.bytes = {}; // the file can be replaced now
        });
        return 0;
    }

    /// Refuses to lose anything, or warns of it.
    void reportLosses(const LaidOut& laidOut, const std::string& name, Console& console) const {
        if (laidOut.losses.count() == 0) {
            return;
        }
        const std::string list = listOf(laidOut.losses, name, laidOut.hasSeveralRoots ? 2 : 1,
                                        Format::json, Format::json);
        if (!isForced_) {
            throw Failure{Trouble::refused,
                          list + "\nnothing was written; use --force to format the rest"};
        }
        console.warn(list);
    }

    /// Prints the name of a file that would change. Scripts get it unchanged.
    /// \return the exit status
    static int list(const std::string& name) {
        print((isTerminal(stdout) ? withoutControls(name) : name) + '\n');
        return exitStatus(Trouble::refused);
    }

    std::string output(const std::string& name) const { return isInPlace_ ? name : "-"; }

    std::vector<std::string> inputs_;
    bool isInPlace_ = false;
    bool isCheck_ = false;
    bool isForced_ = false;
    std::optional<JsonLayout> layout_;
    std::optional<Format> from_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry fmtCommand{"fmt", "Print or change files in the usual layout", fmtNotes,
                                     makeCommand<Fmt>};

} // namespace kel::tool
