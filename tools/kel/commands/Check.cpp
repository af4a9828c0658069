#include "check/DescriptorCheck.h"
#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/Saving.h"
#include "failures/Failure.h"
#include "failures/FailureReport.h"
#include "findings/BinaryScan.h"
#include "findings/FindingExcerpts.h"
#include "findings/FindingText.h"
#include "findings/JsonScan.h"
#include "findings/Schema.h"
#include "findings/SourceLines.h"
#include "findings/TextScan.h"
#include "path/PathText.h"
#include "words/Counted.h"

#include <algorithm>
#include <iterator>

namespace kel::tool {

namespace {

constexpr const char* checkNotes =
    R"(Prints nothing for files without errors. An error in text or JSON names the file, the line
and the column and shows the line. An error in a binary file names the offset of the wrong field and
the path to the value. Only the first error of each file is reported, because what follows it depends
on what was meant. Checked structs are compared with their descriptors.
Each value that its descriptor does not allow is listed with its path and the allowed values, and
so is each variable descriptor that contradicts itself. A file whose name means another format than
its content has is an error, too, unless --from is given: other programs go by the name. The exit status is 1 if a file is malformed
or has any such error, and 3 if a file cannot be read.

--strict also reports what the rules allow but a person would call wrong:
  a described value or a default of another kind, unless it is a number that converts without loss
  a variable of a checked struct that its descriptor does not know
  a name that a struct, or an identity that a manager, has more than once: only the last is kept
  in text: a number that does not fit in 32 bits and wraps around, more than six decimals, and a
  definition that is never used
  in JSON: what values cannot hold, such as null in an array

--schema checks plain structs as if they were checked ones. FILE holds one struct descriptor, as
checked structs have under "@desc", or a struct of descriptors: then each describes the variable of
its name. Every root value is compared, or with --at the value at that path alone: the kinds, the
ranges and the allowed values. A number of the other kind is right if it converts without loss. A
variable whose descriptor has a struct descriptor under "@desc", or a checked struct as its default,
is compared with that one. A missing variable or null is not wrong. A name that the descriptor does
not know is reported with --strict.

--json prints one array for editors, and no other messages about the contents of files. Its members
are objects with "file", "severity" ("error", or "warning" for what only --strict reports) and
"message", and where they are known "line", "column" (in characters), "offset" (in bytes), "path" and
"hint" (what can be done).

Findings in text and JSON have their line and column, and the first 100 of a file show the line.
Those in binary have the offset of the record, as "kel dump" lists it.
Without --json, at most 1000 findings of a file are printed, and the others are counted.

Examples:
  kel check settings.kel backup.kelb
  kel check settings.kel && kel convert settings.kel settings.kelb
  kel check --from text -
  kel check --strict *.kel
  kel check --schema window.desc.kel --at ui.window settings.json
  kel check --strict --schema settings.desc.kel settings.kel
  kel check --strict --json settings.kel)";

class Check : public Command {
public:
    void describe(CommandLine& line) override {
        line.inputs(inputs_);
        line.from(from_);
        line.flag("--strict", isStrict_, "Report what is allowed but probably wrong, too");
        line.file("--schema", schemaName_, "FILE",
                  "Check structs against the descriptor in a file");
        line.text("--at", at_, "PATH", "Check only the value at the path against the schema");
        line.flag("--json", isJson_, "Print what is found as JSON to stdout");
    }

    int run(Console& console) override {
        if (at_ && !schemaName_) {
            throw Failure{Trouble::usage, "--at requires --schema"};
        }
        if (at_) {
            path_ = Path::of(*at_);
        }
        int worst = schemaName_ ? readSchema(console) : 0;
        if (schema_ || !schemaName_) {
            for (const std::string& name : inputs_) {
                worst = std::max(worst, checkFile(name, console));
            }
        }
        if (isJson_) {
            console.begin(Work::writing, "-");
            console.hush();
            print(array_.empty() ? "[]\n" : '[' + array_ + "\n]\n");
        }
        return worst;
    }

private:
    /// What was found in a file.
    struct Report {
        Findings findings = {};
        uint64_t further = 0;                  ///< places that the findings leave out
        Severity severity = Severity::warning; ///< of those places
        bool hasPrinted = false; ///< whether repeated names were printed as one message
    };

    static constexpr size_t mostListed = 1000; // findings of a file

    /// Returns whether anything can be found in text or JSON that has a line.
    bool findsLines(const Content& content) const {
        return isStrict_ || schemaName_ || content.mayHoldDescriptors();
    }

    /// Reads the schema, and reports the errors in it. \return the exit status for it
    int readSchema(Console& console) {
        try {
            console.begin(Work::reading, *schemaName_);
            Losses lostInReading;
            Content content = readContent(*schemaName_, std::nullopt);
            const Content copy = content;
            schema_.emplace(
                readInput(std::move(content), *schemaName_, std::nullopt, lostInReading).document,
                *schemaName_);
            Report report;
            console.begin(Work::checking, *schemaName_);
            checkDescriptors(schema_->document(), false, report.findings);
            locate(report.findings, copy, schema_->document());
            return deliver(*schemaName_, report, console);
        } catch (...) {
            return exitStatus(reportTrouble(*schemaName_, console));
        }
    }

    /// Reports the errors in a file. \return the exit status for it
    int checkFile(const std::string& name, Console& console) {
        try {
            const Report report = examine(name, console);
            const int status = deliver(name, report, console);
            return report.hasPrinted ? exitStatus(Trouble::refused) : status;
        } catch (...) {
            const Trouble trouble = reportTrouble(name, console);
            const bool isWrong = trouble == Trouble::malformed;
            return exitStatus(isWrong ? Trouble::refused : trouble);
        }
    }

    /// Collects the errors in a file.
    Report examine(const std::string& name, Console& console) const {
        Report report;
        console.begin(Work::reading, name);
        const bool isDetailed = isStrict_ || isJson_;
        Losses losses(isDetailed ? mostListed : Losses::listed);
        Content content = readContent(name, from_);
        const bool needsBytes =
            content.format == Format::binary ? schema_.has_value() : findsLines(content);
        const Content copy = needsBytes ? content : Content{content.format, {}, {}};
        if (content.named && *content.named != content.format) {
            report.findings.push_back(misnamed(content.format, *content.named));
        }
        const Input input = readInput(std::move(content), name, std::nullopt, losses);
        const Document& document = input.document;
        const bool hasRepeatedNames = input.format == Format::binary && losses.count() > 0;
        report.severity = hasRepeatedNames ? Severity::error : Severity::warning;
        if (hasRepeatedNames && !isDetailed) {
            report.hasPrinted = true;
            console.say(
                tool::describe(losses, name + ": names are repeated:", document.roots().size()));
        } else if (hasRepeatedNames || isStrict_) {
            // Losses between JSON and values concern conversion, not the file itself.
            addLosses(losses, document, report);
        }
        if (input.mayHoldDescriptors || isStrict_ || schemaName_) {
            console.begin(Work::checking, name);
        }
        if (input.mayHoldDescriptors) {
            try {
                checkDescriptors(document, isStrict_, report.findings);
            } catch (Failure& failure) {
                failure.message = name + ": " + failure.message;
                throw;
            }
        }
        if (schema_) {
            checkSchema(document, report.findings);
        }
        locate(report.findings, copy, document);
        return report;
    }

    /// Returns the finding about a file whose name means another format than its content has.
    static Finding misnamed(Format format, Format named) {
        const std::string form = nameOf(format);
        Finding finding{Severity::error,
                        {},
                        "the content is " + form + ", but the name of the file means " +
                            nameOf(named)};
        finding.hint = "rename the file, or check it with --from " + form;
        return finding;
    }

    static void addLosses(const Losses& losses, const Document& document, Report& report) {
        for (const Loss& loss : losses.first()) {
            report.findings.push_back({report.severity,
                                       withRoot(loss.path, loss.root, document.roots().size()),
                                       loss.reason});
            report.findings.back().offset = loss.offset;
        }
        report.further = losses.count() - losses.first().size();
    }

    /// Compares the document with the schema. A path that leads nowhere is a finding.
    void checkSchema(const Document& document, Findings& found) const {
        try {
            schema_->check(document, path_, isStrict_, found);
        } catch (const Failure& failure) {
            if (failure.trouble != Trouble::refused) {
                throw;
            }
            found.push_back({Severity::error, {}, failure.message});
        }
    }

    /// Scans the content for the places of what was found and, if the check is strict, for more.
    void locate(Findings& found, const Content& content, const Document& document) const {
        const bool isBinary = content.format == Format::binary;
        if (content.bytes.size() == 0 || (found.empty() && (isBinary || !isStrict_))) {
            return;
        }
        ValueOffsets wanted;
        for (const Finding& finding : found) {
            wanted.want(finding);
        }
        Findings more;
        switch (content.format) {
        case Format::text:
            scanText(content.bytes, document, wanted, more);
            break;
        case Format::json:
            scanJson(content.bytes, document, wanted, more);
            break;
        case Format::binary:
            scanBinary(content.bytes, document, wanted);
            break;
        }
        for (Finding& finding : found) {
            finding.offset = finding.offset ? finding.offset : wanted.of(finding);
        }
        if (isBinary) {
            std::stable_sort(found.begin(), found.end(), [](const Finding& a, const Finding& b) {
                return a.offset < b.offset;
            });
            return;
        }
        if (isStrict_) {
            std::move(more.begin(), more.end(), std::back_inserter(found));
        }
        findLines(found, content.bytes);
        if (!isJson_) {
            addExcerpts(found, content);
        }
    }

    /// Reports what was found in a file. \return the exit status for it
    int deliver(const std::string& name, const Report& report, Console& console) {
        const Findings& found = report.findings;
        if (isJson_) {
            for (const Finding& finding : found) {
                addEntry(finding, name);
            }
            if (report.further > 0) {
                addEntry({report.severity, {}, counted(report.further, "more such place")}, name);
            }
        } else {
            const size_t listed = std::min(found.size(), mostListed);
            for (size_t i = 0; i < listed; ++i) {
                console.say(lineFor(found[i], name));
            }
            if (const uint64_t further = found.size() - listed + report.further; further > 0) {
                console.say(name + ": and " + std::to_string(further) + " more");
            }
        }
        return found.empty() ? 0 : exitStatus(Trouble::refused);
    }

    void addEntry(const Finding& finding, const std::string& name) {
        array_ += (array_.empty() ? "\n  " : ",\n  ") + jsonFor(finding, name);
    }

    /// Reports the failure that is being handled: a fault of the file in the form that is wanted,
    /// any other as a message.
    Trouble reportTrouble(const std::string& name, Console& console) {
        if (isJson_) {
            try {
                throw;
            } catch (const Failure& failure) {
                if (failure.trouble == Trouble::malformed) {
                    addEntry(findingOf(failure, name), name);
                    return failure.trouble;
                }
            } catch (...) {
                // reported below
            }
        }
        return reportFailure(console);
    }

    std::vector<std::string> inputs_;
    std::optional<Format> from_;
    bool isStrict_ = false;
    bool isJson_ = false;
    std::optional<std::string> schemaName_;
    std::optional<std::string> at_;
    std::optional<Path> path_;
    std::optional<Schema> schema_;
    std::string array_; ///< the members of the JSON array
};

} // namespace

extern const CommandEntry checkCommand{"check", "Read files and report errors in them", checkNotes,
                                       makeCommand<Check>};

} // namespace kel::tool
