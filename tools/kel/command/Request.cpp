#include "command/Request.h"

#include "command/CommandLine.h"
#include "command/CommandTable.h"
#include "failures/Failure.h"
#include "failures/LastResort.h"
#include "words/SimilarWord.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <kel/config.h>
#include <new>
#include <sstream>

namespace kel::tool {

namespace {

constexpr const char* generalNotes = R"(Formats:
  text    KEL text, .kel          binary  KEL binary, .kelb          json  JSON, .json
  The content of an input decides its format. If the content fits several formats, the name of
  the file decides. A file can hold several root values, one after the other. All are kept.
  The file name "-" means stdin or stdout. Data is written to stdout, messages to stderr.

Paths:
  window.size[0]    element 0 of the variable size of the variable window
  ["odd name"]      a name of other characters than letters, digits, "_" and "@"
  [3].key           the key of pair 3 of an index list; [3].item is its item
  presets#3F2504E0  the value in a manager by its identity or the beginning of it; without a name
                    before it: any value of the file
  2:window          inside the second root value, if there are several
  .                 the root value itself

Exit status:
  0  success
  1  check found errors, diff differences, fmt --check another layout, or find nothing; or a
     command refused, such as for a path that leads nowhere
  2  wrong command line
  3  an input cannot be read, is malformed, or does not fit in memory
  4  an output or a message cannot be written, or memory ran out elsewhere. If the reader of a
     pipe has closed it, this is the status, without a message.

Sizes:
  A number of bytes, or of KiB, MiB, GiB or TiB with K, M, G or T after it, such as 512M.

Examples:
  kel convert settings.json settings.kel
  kel show settings.kelb
  kel check *.kel *.kelb
  kel get settings.kel window.size[0]
  kel set -i settings.kel window.width 800

"kel COMMAND --help" describes a command.)";

constexpr const char* generalHint = "\nrun \"kel --help\" for help";

/// Throws if memory ran out. The parser makes texts with streams of the C++ library, which then
/// drop the rest of their text and report nothing.
void refuseSwallowedText() {
    if (hasMemoryRunOut()) {
        throw std::bad_alloc();
    }
}

/// Returns the arguments with the command before the options that every command has. People write
/// `kel -q show FILE` as they do for other tools.
std::vector<std::string> commandFirst(std::vector<std::string> arguments) {
    constexpr size_t first = 1; // the name of the program precedes it
    const std::span<const std::string> all(arguments);
    const size_t count = all.size() > first ? countCommonOptions(all.subspan(first)) : 0;
    const auto command =
        arguments.begin() + static_cast<std::ptrdiff_t>(std::min(first + count, arguments.size()));
    if (command != arguments.end() && !command->starts_with('-')) {
        std::rotate(arguments.begin() + first, command, command + 1);
    }
    return arguments;
}

/// Refuses an option of a command that stands before the command.
/// \throws Failure usage, with the right order
void refuseEarlyOption(const std::vector<std::string>& arguments) {
    const auto command =
        std::find_if(arguments.begin() + 1, arguments.end(),
                     [](const std::string& argument) { return commandNamed(argument) != nullptr; });
    const std::string& option = arguments[1];
    const bool isOfParser = option == "-h" || option == "--help" || option == "--version";
    if (command == arguments.end() || isOfParser) {
        return;
    }
    throw Failure{Trouble::usage, '"' + option +
                                      "\" stands before the command; did you mean \"kel " +
                                      *command + ' ' + option + "\"?" + generalHint};
}

/// The parser with the commands that it has to know.
class Parser {
public:
    explicit Parser(const std::vector<std::string>& arguments)
        : arguments_(commandFirst(arguments)) {
        app_.allow_windows_style_options(false); // "/" begins a file name on every system
        app_.footer(generalNotes);
        app_.set_version_flag("--version", "kel " KEL_VERSION_STRING);
        app_.require_subcommand(1);
        describe();
    }

    std::variant<Request, Answer> parse() {
        try {
            std::vector<std::string> arguments; // the parser takes the last one first
            std::transform(arguments_.rbegin(), arguments_.rend() - 1,
                           std::back_inserter(arguments), CommandLine::forParser);
            app_.parse(std::move(arguments));
        } catch (const CLI::ParseError& end) {
            if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
                std::ostringstream answer;
                app_.exit(end, answer, answer);
                refuseSwallowedText();
                return answer.str();
            }
            refuseSwallowedText();
            throw Failure{Trouble::usage, end.what() + questionAfterTypo() + hint()};
        }
        refuseSwallowedText();
        // not reached: the parser requires a command
        if (!line_) {
            throw Failure{Trouble::usage, "A subcommand is required" + hint()};
        }
        line_->finish();
        return std::move(request_);
    }

private:
    /// Describes the command that the first argument names with all its options, and without one
    /// all commands by their purpose alone.
    void describe() {
        const std::string first = arguments_.size() > 1 ? arguments_[1] : "-";
        const CommandEntry* named = commandNamed(first);
        if (named == nullptr && !first.starts_with('-')) {
            // The parser would report a missing command, which does not help after a typing error.
            refuseCommand(first);
        }
        if (named == nullptr) {
            if (first.size() > 1) {
                refuseEarlyOption(arguments_);
            }
            for (const CommandEntry* entry : allCommands()) {
                app_.add_subcommand(entry->name, entry->purpose);
            }
            return;
        }
        CLI::App* app = app_.add_subcommand(named->name, named->purpose);
        app->footer(named->notes);
        described_ = app;
        request_.command = named->make();
        line_.emplace(*app);
        request_.command->describe(*line_);
        describeCommon(*line_, request_.common);
    }

    /// Returns where to find help for the command that is described, or for all.
    std::string hint() const {
        return described_ == nullptr
                   ? generalHint
                   : "\nrun \"kel " + described_->get_name() + " --help\" for help";
    }

    /// Returns ` (did you mean --OPTION?)` for the first option that the command does not have, or
    /// nothing if no option is similar.
    std::string questionAfterTypo() const {
        if (described_ == nullptr) {
            return {};
        }
        const std::vector<std::string> unknown = described_->remaining();
        const auto typed = std::find_if(unknown.begin(), unknown.end(), [](const auto& argument) {
            return argument.starts_with("--");
        });
        if (typed == unknown.end()) {
            return {};
        }
        SimilarWord similar(typed->substr(0, typed->find('=')));
        for (const CLI::Option* option : described_->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                similar.offer("--" + name);
            }
        }
        return similar.best().empty() ? "" : " (did you mean " + similar.best() + "?)";
    }

    const std::vector<std::string> arguments_; ///< with the command before its options
    CLI::App app_{
        "Works with files of KEL values: converts, shows, changes, compares and checks them.",
        "kel"};
    const CLI::App* described_ = nullptr; ///< the command that the first argument names
    Request request_;
    std::optional<CommandLine> line_;
};

} // namespace

void refuseCommand(const std::string& name) {
    SimilarWord similar(name);
    for (const CommandEntry* entry : allCommands()) {
        similar.offer(entry->name);
    }
    throw Failure{Trouble::usage,
                  "unknown command \"" + name + '"' + similar.question() + generalHint};
}

Answer generalHelp() {
    return std::get<Answer>(parseRequest({"kel", "--help"}));
}

Answer helpOf(const CommandEntry& entry) {
    return std::get<Answer>(parseRequest({"kel", entry.name, "--help"}));
}

std::variant<Request, Answer> parseRequest(const std::vector<std::string>& arguments) {
    return Parser(arguments).parse();
}

} // namespace kel::tool
