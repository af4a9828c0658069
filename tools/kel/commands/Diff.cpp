#include "command/Command.h"
#include "command/CommandLine.h"
#include "diff/ChangeReport.h"
#include "diff/ChangeText.h"
#include "diff/Comparison.h"
#include "document/Input.h"
#include "document/OutputBytes.h"
#include "document/Saving.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "losses/Representable.h"
#include "words/Counted.h"
#include "json/JsonWriter.h"
#include "json/TextBuffer.h"

#include <utility>

namespace kel::tool {

namespace {

constexpr const char* diffNotes =
    R"(Compares values, not bytes, so the two files can have different formats. Prints a line for
each change, and nothing if the values are the same or with --quiet. Paths are those of OLD, and of NEW for what
was added, so "kel get" finds the values there:
  ~ size[0]: 640 -> 800         changed
  + theme: "dark"               added
  - old: { 3 variables }        removed
  > a.b -> c.d                  moved: a container or longer string with the same contents
  ~ b: the same changes as in a
                                a shared value that a line above compares already
  & b: shared with a -> not shared
                                with --sharing
  # a: IDENTITY -> IDENTITY     with --identities

What belongs together:
  variables by their names, values of managers by their identities, pairs of index lists by their
  keys, elements of arrays by a longest common subsequence, root values by their numbers or, if one
  file has more, like elements of arrays. Elements between common ones are compared with each other
  if they have values in common or if there are equally many, and in long arrays by the variable
  that identifies them. If two arrays have very little in common, the common subsequence is not
  always the longest one, so that the time is limited.

What is equal:
  Kinds count: the Int 1 and the Double 1.0 are different. Doubles are equal as numbers, and
  every not-a-number equals every other one. Identities and sharing do not count without their
  options. --identities takes two binary files, because the other formats do not keep all
  identities.

JSON:
  With --json one object is printed, with the array "changes". Each change has "change", one of
  changed, added, removed, moved, repeated, reordered, sharing and identity, and "path". Depending
  on that, it has "newPath" (the path in NEW if it is another one), "old" and "new" (whole values,
  or the paths that share the value), "oldKind" and "newKind" (if they are different), "key" (of an
  added or removed pair), "as" (the path in NEW whose value is also here), and "order" (the old
  numbers of the values in the new order). Values that JSON cannot hold are replaced as by "kel
  convert --force", with a warning.

Exit status:
  0  the values are the same
  1  the values are different
  2  wrong command line
  3  an input cannot be read, is malformed, or does not fit in memory
  4  the output cannot be written, or would exceed --max-output

Examples:
  kel diff settings.kel settings.new.kel
  kel diff settings.json settings.kelb && echo nothing was lost
  kel diff -q saved.kelb current.kelb && rm current.kelb
  git show HEAD:settings.json | kel diff - settings.json
  kel diff --json old.kel new.kel | jq -r '.changes[].path'
  kel diff --identities --sharing before.kelb after.kelb)";

class Diff : public Command {
public:
    void describe(CommandLine& line) override {
        line.file("OLD", before_, "File to compare");
        line.file("NEW", after_, "File to compare it with");
        line.flag("--json", isJson_, "Print the changes as JSON, with whole values");
        line.flag("--identities", options_.countsIdentities,
                  "Also compare the identities of values");
        line.flag("--sharing", options_.countsSharing, "Also compare which places share one value");
        line.from(from_);
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        if (before_ == "-" && after_ == "-") {
            throw Failure{Trouble::usage, "OLD and NEW cannot both be stdin"};
        }
        Content before = read(before_, console);
        Content after = read(after_, console);
        const uint64_t limit =
            maxOutput_.value_or(usualOutputLimit(before.bytes.size() + after.bytes.size()));
        requireIdentities(before, before_);
        requireIdentities(after, after_);
        const bool areSameBytes =
            before.format == after.format && before.bytes.view() == after.bytes.view();
        const Input old = parse(std::move(before), before_, console);
        if (areSameBytes) { // equal as values too, also if they hold not-a-number
            print(Changes{PlacePairs(0, 0), {}}, limit, console);
            return 0;
        }
        const Input other = parse(std::move(after), after_, console);
        console.begin(Work::checking, before_ + " and " + after_);
        options_.endsAtFirst = console.isQuiet();
        const Changes changes = compare(old.document, other.document, options_);
        print(changes, limit, console);
        return changes.list.empty() ? 0 : 1;
    }

private:
    Content read(const std::string& name, Console& console) const {
        console.begin(Work::reading, name);
        return readContent(name, from_);
    }

    /// Refuses to print more than the limit. The paths of deep trees can be far longer than the
    /// trees.
    /// \throws Failure unwritten
    void refuseMoreThan(uint64_t limit, uint64_t size) const {
        if (size > limit) {
            throw Failure{Trouble::unwritten,
                          before_ + " and " + after_ + ": the differences would take more than " +
                              counted(limit, "byte") + "; use --max-output to allow more"};
        }
    }

    static Input parse(Content&& content, const std::string& name, Console& console) {
        console.begin(Work::reading, name);
        Losses losses;
        Input input = readInput(std::move(content), name, std::nullopt, losses);
        warnOfLosses(losses, name, input, console);
        return input;
    }

    /// Requires a format that keeps identities if they are to be compared.
    void requireIdentities(const Content& content, const std::string& name) const {
        if (options_.countsIdentities && content.format != Format::binary) {
            throw Failure{Trouble::usage, "--identities: " + name + " is " +
                                              nameOf(content.format) +
                                              ", and only binary keeps all identities"};
        }
    }

    void print(const Changes& changes, uint64_t limit, Console& console) const {
        if (console.isQuiet()) {
            return;
        }
        uint64_t size = 0;
        for (const Change& change : changes.list) {
            size += lineFor(change, changes.places).size() + 1;
            refuseMoreThan(limit, size);
        }
        if (isJson_) {
            printJson(changes, limit, console);
        } else if (!changes.list.empty()) {
            printLines(changes, console);
        }
    }

    static void printLines(const Changes& changes, Console& console) {
        const Painter painter = console.painterFor(stdout);
        writeTo("-", console, [&](std::FILE* file) {
            TextBuffer out([file](std::string_view text) { writeBytes(text, file); });
            for (const Change& change : changes.list) {
                const Paint paint = paintOf(change.kind);
                out.put(painter.begin(paint));
                out.put(lineFor(change, changes.places));
                out.put(painter.end());
                out.put('\n');
            }
            out.flush();
        });
    }

    /// Prints the report, after what JSON cannot hold was replaced in it. That changes values of
    /// the inputs, which are not needed again.
    void printJson(const Changes& changes, uint64_t limit, Console& console) const {
        Document report = reportOf(changes);
        Losses losses;
        const DocumentScan scan = scanDocument(report, Format::json, &losses);
        refuseMoreThan(limit, scan.bytes);
        if (!scan.cycle) {
            report.knowAcyclic();
        }
        if (losses.count() > 0) {
            console.warn(describePlaces(losses, before_ + " and " + after_,
                                        "of the changes cannot be written as json",
                                        report.roots().size()));
            makeRepresentable(report, Format::json, scan.namesakes);
        }
        writeTo("-", console, [&](std::FILE* file) { writeJson(report, JsonLayout(), file); });
    }

    std::string before_;
    std::string after_;
    std::optional<Format> from_;
    std::optional<uint64_t> maxOutput_;
    bool isJson_ = false;
    ComparisonOptions options_;
};

} // namespace

extern const CommandEntry diffCommand{"diff", "Compare the values of two files", diffNotes,
                                      makeCommand<Diff>};

} // namespace kel::tool
