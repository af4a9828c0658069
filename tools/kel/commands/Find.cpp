#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/Saving.h"
#include "failures/Failure.h"
#include "find/Finder.h"
#include "find/KindWord.h"
#include "losses/DocumentScan.h"
#include "words/Counted.h"
#include "words/Printer.h"
#include "words/ValueText.h"

namespace kel::tool {

namespace {

constexpr const char* findNotes =
    R"(Prints the path and the value of each name, string, number or other scalar that contains
PATTERN. A container is printed as its kind. The paths are those that all commands take.

PATTERN is a part of the text, letter by letter. With --glob it is compared with the whole text,
where * stands for any characters and ? for one. --kind restricts what is found to one kind, and
without PATTERN it finds all values of the kind.

A value in several places is found at the first one, and by its name at each. With --all, it is
found at every place. The list ends with an error where it would exceed --max-output.

The exit status is 0 if something was found and 1 if nothing was. With --quiet, the exit status is
the only result, and the search stops at the first match.

Examples:
  kel find settings.kel port                   names and values that contain "port"
  kel find settings.kelb --names -i COLOUR     names, in upper and lower case
  kel find settings.json --glob "http*.org"    whole names and strings
  kel find settings.kel --kind double          every double
  kel find - token -q < settings.json          the exit status alone
  kel find settings.kel --kind null --count    how many variables have no value)";

/// Thrown at the first match, where nothing else matters.
struct IsFound {};

class Find : public Command {
public:
    void describe(CommandLine& line) override {
        line.file("IN", input_, "File to read");
        line.optionalArgument("PATTERN", pattern_, "What to find");
        line.flag("--names", names_, "Find PATTERN in names only");
        line.flag("--values", values_, "Find PATTERN in values only");
        line.choice(
            "--kind", [this](const std::string& word) { kind_ = kindOfWord(word); }, kindWords(),
            "Find values of this kind only");
        line.flag("--glob", isGlob_, "PATTERN is the whole text, with * and ?");
        line.flag("-i,--ignore-case", ignoresCase_, "Letters from A to Z match in either case");
        line.flag("--all", everyPlace_, "Find a value that is in several places at each of them");
        line.flag("-l,--paths-only", pathsOnly_, "Print the paths alone");
        line.flag("-c,--count", counts_, "Print the number of matches alone");
        line.from(from_);
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        const bool hasPattern = pattern_.has_value() && (isGlob_ || !pattern_->empty());
        if (!hasPattern && !kind_) {
            throw Failure{Trouble::usage, "PATTERN is required, or --kind"};
        }
        if (!hasPattern && (names_ || values_ || isGlob_ || ignoresCase_)) {
            throw Failure{Trouble::usage, "PATTERN is required with --names, --values, --glob and "
                                          "--ignore-case"};
        }
        const Sought sought = soughtValues();
        console.begin(Work::reading, input_);
        Content content = mapContent(input_, from_);
        return console.isQuiet() ? searchQuietly(std::move(content), sought)
               : counts_         ? count(std::move(content), sought, console)
                                 : list(std::move(content), sought, console);
    }

private:
    Sought soughtValues() const {
        Sought sought;
        if (pattern_ && (isGlob_ || !pattern_->empty())) {
            sought.pattern.emplace(*pattern_, isGlob_, ignoresCase_);
        }
        sought.inNames = names_ || !values_;
        sought.inValues = values_ || !names_;
        sought.everyPlace = everyPlace_;
        sought.kind = kind_;
        return sought;
    }

    int searchQuietly(Content&& content, const Sought& sought) const {
        Finder finder(sought, [](const TreeCursor&, const std::string&) { throw IsFound(); });
        Losses ignored;
        try {
            visitRoots(std::move(content), input_, finder, ignored);
        } catch (const IsFound&) {
            return 0;
        }
        return 1;
    }

    int count(Content&& content, const Sought& sought, Console& console) const {
        Finder finder(sought, nullptr);
        visit(std::move(content), finder, console);
        print(std::to_string(finder.count()) + '\n');
        return statusOf(finder);
    }

    int list(Content&& content, const Sought& sought, Console& console) const {
        const uint64_t limit = maxOutput_.value_or(usualOutputLimit(content.bytes.size()));
        uint64_t size = 0; // of all lines so far
        Printer printer(console);
        const Painter painter = console.painterFor(stdout);
        Finder finder(sought, [&](const TreeCursor& cursor, const std::string& path) {
            const std::string words = pathsOnly_ ? "" : ": " + wordsFor(cursor.value());
            size += path.size() + words.size() + 1;
            if (size > limit) {
                throw Failure{Trouble::refused, input_ + ": the list would exceed " +
                                                    counted(limit, "byte") +
                                                    "; use --max-output to allow more"};
            }
            printer.put(painter(Paint::name, path));
            printer.put(words);
            printer.put("\n");
        });
        visit(std::move(content), finder, console);
        printer.finish();
        return statusOf(finder);
    }

    void visit(Content&& content, Finder& finder, Console& console) const {
        const Format format = content.format;
        Losses losses;
        visitRoots(std::move(content), input_, finder, losses);
        warnOfLosses(losses, input_, format, finder.hasSeveralRoots(), console);
    }

    static int statusOf(const Finder& finder) { return finder.count() > 0 ? 0 : 1; }

    std::string input_;
    std::optional<std::string> pattern_;
    bool names_ = false;
    bool values_ = false;
    std::optional<int32_t> kind_;
    bool isGlob_ = false;
    bool ignoresCase_ = false;
    bool everyPlace_ = false;
    bool pathsOnly_ = false;
    bool counts_ = false;
    std::optional<Format> from_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry findCommand{"find", "Find values by name, content or kind", findNotes,
                                      makeCommand<Find>};

} // namespace kel::tool
