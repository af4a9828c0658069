#include "Options.h"

#include "Failure.h"
#include "LastResort.h"
#include "SizeText.h"

#include <CLI/CLI.hpp>
#include <kel/config.h>
#include <new>
#include <sstream>

namespace kel::tool {

namespace {

/// Returns the format of a name that has been checked already, or nothing for an empty name.
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
  The content of an input decides its format. If the content fits several formats, the name of
  the file decides. A file can hold several root values, one after the other. All are kept.
  The file name "-" means stdin or stdout. Data is written to stdout, messages to stderr.

Exit status:
  0  success
  1  check found errors, or convert or show refused
  2  wrong command line
  3  an input cannot be read, is malformed, or does not fit in memory
  4  an output or a message cannot be written, or memory ran out elsewhere

Sizes:
  A number of bytes, or of KiB, MiB, GiB or TiB with K, M, G or T after it, such as 512M.

Examples:
  kel convert settings.json settings.kel
  kel show settings.kelb
  kel check *.kel *.kelb

"kel COMMAND --help" describes a command.)";

constexpr const char* convertNotes = R"(JSON:
  Objects become structs and arrays stay arrays. Integers of 32 bits become Ints, and other
  numbers Doubles. A null member becomes a variable without a value. {"$guid": "..."} is a guid,
  and {"$memblock": "..."} a memory block in base64. If two names are equal, the last one wins.
  A single root value is written indented. Several root values are written one per line.

Losses:
  If the output format cannot hold everything, convert writes nothing and lists the first ten
  places. Each format has its limits:
  text    cannot hold a double quote in a string, a double that needs more than six decimals or
          a 32-bit integer part, a memory block
  binary  cannot hold guids, null outside a struct, a value with the identity of another
  json    cannot hold bytes that are not valid UTF-8, doubles that are not finite, structs that
          look like a guid or memory block
  binary and json
          cannot hold managers, index lists, checked structs and descriptors; text can
  text and json
          cannot hold a value that contains itself
  Values cannot hold everything that JSON can: null in an array, names that are empty or contain
  a double quote, integers that no double holds exactly.
  Identities and sharing are not listed. Binary keeps the identity of every value, and which
  values are shared. Text keeps only the identities of values in managers and of struct
  descriptors. JSON keeps no identity. Text and JSON do not keep sharing.

With --force the list is a warning, and the output is changed:
  text    double quotes become single ones; doubles get six decimals; memory blocks and doubles
          that are not finite become null or are left out of arrays
  binary  guids become strings; null roots are left out; if several values have one identity, all
          but the first get a new one
  json    doubles that are not finite become null
  binary and json
          managers become arrays of their values, index lists arrays of their pairs, checked
          structs plain structs without "@desc", descriptors plain structs
  From JSON, null in arrays and members with such names are left out, and integers are rounded.
  A value inside itself becomes null or is left out of an array.
  Deep nesting and shared values can make text and JSON far larger than the input. If that is more
  than --max-output allows, nothing is written, even with --force.

Examples:
  kel convert settings.json settings.kel
  kel convert settings.kel settings.kelb
  kel convert --to json settings.kelb - | less
  kel convert --force --from json --to binary - tweets.kelb < tweets.json

The output appears whole or not at all. An existing file is replaced and keeps its permissions.)";

constexpr const char* showNotes =
    R"(Prints the text form, even if it cannot be read back: strings with double quotes are printed
unchanged, and a memory block is printed as its size.

Examples:
  kel show settings.kelb
  kel show --from json - < settings.json)";

constexpr const char* checkNotes =
    R"(Prints nothing for files without errors. An error names the file and the line, or for a
binary file the offset where reading stopped. Checked structs are compared with their descriptors.
Each value that its descriptor does not allow is listed with its path and the allowed values, and
so is each variable descriptor that contradicts itself. The exit status is 1 if a file is malformed
or holds such a value, and 3 if a file cannot be read.

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
                                            : '"' + called + "\" is not text, binary or json";
            },
            ""));
}

void addSizeOption(CLI::App& command, const char* name, std::string& size,
                   const char* description) {
    command.add_option(name, size, description)
        ->type_name("SIZE")
        ->check(CLI::Validator(
            [](const std::string& text) {
                return sizeOfText(text) ? std::string()
                                        : '"' + text + "\" is not a size such as 512M or 2G";
            },
            ""));
}

constexpr const char* hint = "\nrun \"kel --help\" for help";

/// Returns the output format: the requested one, or that of the file name.
Format requireTarget(const Options& options) {
    const std::optional<Format> target = options.to ? options.to : formatOfName(options.output);
    if (!target) {
        throw Failure{Trouble::usage, options.output + ": the name does not show the format; use "
                                                       "--to text, --to binary or --to json"};
    }
    return *target;
}

/// Throws if memory ran out. The parser makes texts with streams of the C++ library, which then
/// drop the rest of their text and report nothing.
void refuseSwallowedText() {
    if (hasMemoryRunOut()) {
        throw std::bad_alloc();
    }
}

} // namespace

std::variant<Options, Answer> parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    std::string input;
    std::string from;
    std::string to;
    std::string maxMemory;
    std::string maxOutput;
    constexpr const char* takeInputFor = "Read the input as this format, whatever its content";
    constexpr const char* limitMemoryTo = "Fail if more memory is needed, such as 512M or 2G";
    constexpr const char* limitOutputTo =
        "Refuse to write more text or JSON (default: 256M or, if more, 64 times IN)";
    CLI::App app("Converts, shows and checks files of KEL values.", "kel");
    app.allow_windows_style_options(false); // "/" begins a file name on every system
    app.footer(generalNotes);
    app.set_version_flag("--version", "kel " KEL_VERSION_STRING);
    app.require_subcommand(1);

    CLI::App* convert = app.add_subcommand("convert", "Convert a file into another format");
    convert->add_option("IN", input, "File to read")->required()->type_name("");
    convert->add_option("OUT", options.output, "File to write")->required()->type_name("");
    addFormatOption(*convert, "--from", from, takeInputFor);
    addFormatOption(*convert, "--to", to, "Write this format, whatever the name of OUT");
    convert->add_flag("--force", options.isForced,
                      "Convert what the format can hold and warn about the rest");
    addSizeOption(*convert, "--max-output", maxOutput, limitOutputTo);
    addSizeOption(*convert, "--max-memory", maxMemory, limitMemoryTo);
    convert->footer(convertNotes);

    CLI::App* show = app.add_subcommand("show", "Print a file as text");
    show->add_option("IN", input, "File to read")->required()->type_name("");
    addFormatOption(*show, "--from", from, takeInputFor);
    addSizeOption(*show, "--max-output", maxOutput, limitOutputTo);
    addSizeOption(*show, "--max-memory", maxMemory, limitMemoryTo);
    show->footer(showNotes);

    CLI::App* check = app.add_subcommand("check", "Read files and report errors in them");
    check->add_option("IN", options.inputs, "Files to read")->required()->type_name("");
    addFormatOption(*check, "--from", from, takeInputFor);
    addSizeOption(*check, "--max-memory", maxMemory, limitMemoryTo);
    check->footer(checkNotes);

    const std::string first = arguments.size() > 1 ? arguments[1] : "-";
    const auto isCalled = [&first](const CLI::App* command) {
        return command->get_name() == first;
    };
    // The parser would report a missing command, which does not help after a typing error.
    if (!first.starts_with('-') && app.get_subcommands(isCalled).empty()) {
        throw Failure{Trouble::usage, "unknown command \"" + first + '"' + hint};
    }
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1)); // last first
    } catch (const CLI::ParseError& end) {
        if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            std::ostringstream answer;
            app.exit(end, answer, answer);
            refuseSwallowedText();
            return answer.str();
        }
        refuseSwallowedText();
        throw Failure{Trouble::usage, end.what() + std::string(hint)};
    }
    refuseSwallowedText();
    if (!*check) {
        options.inputs = {input};
    }
    options.command = *convert ? Command::convert : *show ? Command::show : Command::check;
    options.from = formatCalled(from);
    options.to = formatCalled(to);
    options.maxMemory = sizeOfText(maxMemory);
    options.maxOutput = sizeOfText(maxOutput);
    if (*convert) {
        options.to = requireTarget(options);
    }
    return options;
}

} // namespace kel::tool
