#include "Options.h"

#include "Failure.h"

#include <CLI/CLI.hpp>
#include <kel/config.h>
#include <sstream>

namespace kel::tool {

namespace {

/// The format of a name that the command line has been checked for; nothing for an empty one.
std::optional<Format> formatCalled(const std::string& name) {
    for (const Format format : {Format::text, Format::binary, Format::json}) {
        if (name == nameOf(format)) {
            return format;
        }
    }
    return std::nullopt;
}

constexpr const char* generalNotes = R"(Formats:
  text    KEL text, .kel          binary  KEL binary, .kelb          json  JSON, .json
  An input's format is told by its content, else by its name. A file may hold several root
  values one after the other; all of them are kept.
  Names of files: "-" is stdin or stdout. Data goes to stdout, all else to stderr.

Exit status:
  0  fine
  1  the answer is no: check found errors, convert or show refused
  2  wrong command line
  3  an input cannot be read or is malformed
  4  an output cannot be written

Examples:
  kel convert settings.json settings.kel
  kel show settings.kelb
  kel check *.kel *.kelb

"kel COMMAND --help" tells more about a command.)";

constexpr const char* convertNotes = R"(JSON:
  Objects are structs, arrays arrays, integers of 32 bits Ints, other numbers Doubles, null
  members variables without a value. {"$guid": "..."} is a guid, {"$memblock": "..."} a memory
  block in base64. Of two equal names the last wins. One root value is written indented,
  several are written one on each line.

Nothing is lost silently:
  What the output cannot carry makes convert refuse: nothing is written, and the first ten
  places are listed. Text cannot carry a double quote in a string, a double that six decimals
  or a 32-bit integer part do not carry, a memory block. Binary cannot carry guids, null
  outside a struct, a value with the identity of another. JSON cannot carry bytes that are no
  UTF-8, doubles that are not finite, and structs that look like a guid or memory block. Neither
  can carry managers, index lists, checked structs and descriptors; text carries them all. Values
  do not hold what only JSON knows: null in an array, names that are empty or contain a double
  quote, integers that no double holds exactly. Text and JSON cannot carry a value that contains itself.
  Binary keeps the identity of every value, and that a value is shared between places. Text keeps
  identities of the values in managers and of struct descriptors only, JSON none, neither sharing.

With --force the same list is a warning, and:
  text    double quotes become single ones, doubles get six decimals; memory blocks and doubles
          that are not finite become null or are left out of arrays
  binary  guids become strings; null roots are left out; of values with one identity, all but
          the first get a new one
  json    doubles that are not finite become null
  binary and json
          managers become arrays of their values, index lists arrays of their pairs, checked
          structs plain structs without "@desc", descriptors plain structs
  From JSON, null in arrays and members with such names are left out; integers are rounded.
  A value inside itself becomes null or is left out of an array.
  Documents that would unfold to more than 2147483648 values or 16 GiB are refused all the same.

Examples:
  kel convert settings.json settings.kel
  kel convert settings.kel settings.kelb
  kel convert --to json settings.kelb - | less
  kel convert --force --from json --to binary - tweets.kelb < tweets.json

The output appears whole or not at all; an existing file is replaced and keeps its permissions.)";

constexpr const char* showNotes =
    R"(Prints the text form, also where it could not be read back: strings with double quotes as
they are, of a memory block the size.

Examples:
  kel show settings.kelb
  kel show --from json - < settings.json)";

constexpr const char* checkNotes =
    R"(Says nothing about files that are fine. An error tells the file and the line, in binary
files the offset where reading stopped. Checked structs are compared with their descriptors: each
variable whose value its descriptor does not allow is told with its path, the value and what is
allowed, and so is each variable descriptor that is wrong in itself. Exit status 1 when a file is
malformed or holds such a value, 3 when one cannot be read.

Examples:
  kel check settings.kel backup.kelb
  kel check --from text -)";

void addFormatOption(CLI::App& command, const char* name, std::string& format,
                     const char* description) {
    command.add_option(name, format, description)
        ->type_name("text|binary|json")
        ->check(CLI::Validator(
            [](const std::string& called) {
                return formatCalled(called) ? std::string()
                                            : called + " is none of text, binary and json";
            },
            ""));
}

constexpr const char* hint = "\nTry \"kel --help\".";

/// The output format: as asked for, else as the file name tells.
Format requireTarget(const Options& options) {
    const std::optional<Format> target = options.to ? options.to : formatOfName(options.output);
    if (!target) {
        throw Failure{Trouble::usage, options.output + ": the name tells no format; give one with "
                                                       "--to text, --to binary or --to json"};
    }
    return *target;
}

} // namespace

std::variant<Options, Answer> parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    std::string input;
    std::string from;
    std::string to;
    constexpr const char* takeInputFor = "Take the input for this format, whatever it looks like";
    CLI::App app("Converts, shows and checks files of KEL values.", "kel");
    app.allow_windows_style_options(false); // "/" begins a file name on every system
    app.footer(generalNotes);
    app.set_version_flag("--version", "kel " KEL_VERSION_STRING);
    app.require_subcommand(1);

    CLI::App* convert = app.add_subcommand("convert", "Convert a file into another format");
    convert->add_option("IN", input, "File to read")->required()->type_name("");
    convert->add_option("OUT", options.output, "File to write")->required()->type_name("");
    addFormatOption(*convert, "--from", from, takeInputFor);
    addFormatOption(*convert, "--to", to, "Write this format, whatever the name of OUT tells");
    convert->add_flag("--force", options.isForced,
                      "Convert what can be carried and warn about the rest");
    convert->footer(convertNotes);

    CLI::App* show = app.add_subcommand("show", "Print a file in the text form");
    show->add_option("IN", input, "File to read")->required()->type_name("");
    addFormatOption(*show, "--from", from, takeInputFor);
    show->footer(showNotes);

    CLI::App* check = app.add_subcommand("check", "Read files and say what is wrong with them");
    check->add_option("IN", options.inputs, "Files to read")->required()->type_name("");
    addFormatOption(*check, "--from", from, takeInputFor);
    check->footer(checkNotes);

    const std::string first = arguments.size() > 1 ? arguments[1] : "-";
    const auto isCalled = [&first](const CLI::App* command) {
        return command->get_name() == first;
    };
    // The parser would say that a command is missing, which is no help against a slip of the pen.
    if (!first.starts_with('-') && app.get_subcommands(isCalled).empty()) {
        throw Failure{Trouble::usage, first + ": unknown command" + hint};
    }
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1)); // last first
    } catch (const CLI::ParseError& end) {
        if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            std::ostringstream answer;
            app.exit(end, answer, answer);
            return answer.str();
        }
        throw Failure{Trouble::usage, end.what() + std::string(hint)};
    }
    if (!*check) {
        options.inputs = {input};
    }
    options.command = *convert ? Command::convert : *show ? Command::show : Command::check;
    options.from = formatCalled(from);
    options.to = formatCalled(to);
    if (*convert) {
        options.to = requireTarget(options);
    }
    return options;
}

} // namespace kel::tool
