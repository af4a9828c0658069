#include "command/CommandLine.h"

#include "failures/Failure.h"
#include "failures/LastResort.h"
#include "system/System.h"
#include "words/SizeText.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace kel::tool {

namespace {

/// Returns the format of the name, or nothing for any other text.
std::optional<Format> formatCalled(const std::string& name) {
    for (const Format format : {Format::text, Format::binary, Format::json}) {
        if (name == nameOf(format)) {
            return format;
        }
    }
    return std::nullopt;
}

/// Adds an option whose text is translated.
/// \param translate returns the value of a text, or nothing for a text that is none
/// \param wanted completes the message `"TEXT" is not ...`
template <class Value, class Translate>
void addTranslated(CLI::App& app, const char* name, std::optional<Value>& value, const char* type,
                   const char* description, const Translate& translate, const char* wanted) {
    app.add_option_function<std::string>(
           name, [&value, translate](const std::string& text) { value = translate(text); },
           description)
        ->type_name(type)
        ->check(CLI::Validator(
            [translate, wanted](const std::string& text) {
                return translate(text) ? std::string() : '"' + text + "\" is not " + wanted;
            },
            ""));
}

/// Returns whether the parser splits texts of this kind, or gets them with a blank before.
bool isBracketed(std::string_view text) {
    return !text.empty() && (text.front() == '[' || text.front() == ' ') && text.back() == ']';
}

/// Returns the argument as the user typed it, from what the parser got.
std::string asTyped(const std::string& text) {
    const std::string_view typed = std::string_view(text).substr(text.starts_with(' ') ? 1 : 0);
    return isBracketed(typed) ? std::string(typed) : text;
}

/// Refuses an empty name of a file, which a script gets from a variable that is not set.
CLI::Validator namesFile() {
    return {[](const std::string& text) {
                return text.empty() ? std::string("the name of a file cannot be empty")
                                    : std::string();
            },
            ""};
}

/// Adds an argument or an option that is one text.
/// \param type the name of the value in help; empty for an argument
template <class Text>
CLI::Option* addText(CLI::App& app, const char* name, Text& value, const char* type,
                     const char* description) {
    return app
        .add_option_function<std::string>(
            name, [&value](const std::string& text) { value = asTyped(text); }, description)
        ->type_name(type);
}

/// Adds an option that takes several texts.
CLI::Option* addTexts(CLI::App& app, const char* name, std::vector<std::string>& values,
                      const char* description) {
    return app
        .add_option_function<std::vector<std::string>>(
            name,
            [&values](const std::vector<std::string>& texts) {
                values.clear();
                for (const std::string& text : texts) {
                    values.push_back(asTyped(text));
                }
            },
            description)
        ->type_name("");
}

} // namespace

std::string CommandLine::forParser(const std::string& argument) {
    return isBracketed(argument) ? ' ' + argument : argument;
}

void CommandLine::argument(const char* name, std::string& value, const char* description) {
    addText(app_, name, value, "", description)->required();
}

void CommandLine::file(const char* name, std::string& value, const char* description) {
    addText(app_, name, value, "", description)->required()->check(namesFile());
}

void CommandLine::file(const char* name, std::optional<std::string>& value, const char* type,
                       const char* description) {
    addText(app_, name, value, type, description)->check(namesFile());
}

void CommandLine::optionalArgument(const char* name, std::optional<std::string>& value,
                                   const char* description) {
    addText(app_, name, value, "", description);
}

void CommandLine::arguments(const char* name, std::vector<std::string>& values,
                            const char* description) {
    addTexts(app_, name, values, description)->required();
}

void CommandLine::input(std::string& name) {
    addText(app_, "IN", name, "", "File to read")->check(namesFile());
    input_ = &name;
}

void CommandLine::inputs(std::vector<std::string>& names) {
    addTexts(app_, "IN", names, "Files to read")->check(namesFile());
    inputs_ = &names;
}

void CommandLine::flag(const char* name, bool& value, const char* description) {
    app_.add_flag(name, value, description);
}

void CommandLine::text(const char* name, std::optional<std::string>& value, const char* type,
                       const char* description) {
    addText(app_, name, value, type, description);
}

void CommandLine::choice(const char* name, const std::function<void(const std::string&)>& choose,
                         const std::vector<std::string>& words, const char* description) {
    app_.add_option_function<std::string>(name, choose, description)
        ->type_name(CLI::detail::join(words, "|"))
        ->check(CLI::Validator(
            [words](const std::string& text) {
                return std::find(words.begin(), words.end(), text) != words.end()
                           ? std::string()
                           : '"' + text + "\" is not " + CLI::detail::join(words, " or ");
            },
            ""));
}

void CommandLine::format(const char* name, std::optional<Format>& value, const char* description) {
    addTranslated(app_, name, value, "text|binary|json", description, formatCalled,
                  "text, binary or json");
}

void CommandLine::size(const char* name, std::optional<uint64_t>& value, const char* description) {
    addTranslated(app_, name, value, "SIZE", description, sizeOfText, "a size such as 512M or 2G");
}

void CommandLine::from(std::optional<Format>& value) {
    format("--from", value, "Read the input as this format, whatever its content");
}

void CommandLine::maxOutput(std::optional<uint64_t>& value) {
    size("--max-output", value,
         "Refuse to write more text or JSON (default: 256M or, if more, 64 times the input)");
}

void CommandLine::layout(std::optional<JsonLayout>& value) {
    using Indented = JsonLayout::Indented;
    CLI::Option* compact = app_.add_flag_callback(
        "--compact", [&value] { value = JsonLayout{Indented::none}; },
        "Write each root value of JSON on one line");
    choice(
        "--indent",
        [&value](const std::string& word) {
            value = word == "tab" ? JsonLayout{Indented::all, '\t', 1}
                                  : JsonLayout{Indented::all, ' ', size_t(word.front() - '0')};
        },
        {"0", "1", "2", "3", "4", "5", "6", "7", "8", "tab"},
        "Indent JSON by so many spaces, or by tabs (default: a single root value by 4)");
    compact->excludes("--indent");
}

void describeCommon(CommandLine& line, CommonOptions& options) {
    line.choice(
        "--color",
        [&options](const std::string& word) {
            options.colours = word == "always"  ? ColourChoice::always
                              : word == "never" ? ColourChoice::never
                                                : ColourChoice::automatic;
        },
        {"auto", "always", "never"},
        "Use colours (default: auto, on terminals unless NO_COLOR is set)");
    line.flag("-q,--quiet", options.isQuiet, "Print errors, but no warnings and no progress");
    line.size("--max-memory", options.maxMemory,
              "Fail if more memory is needed, such as 512M or 2G");
}

size_t countCommonOptions(std::span<const std::string> arguments) {
    CLI::App app;
    CommandLine line(app);
    CommonOptions options;
    describeCommon(line, options);
    size_t count = 0;
    while (count < arguments.size()) {
        const std::string& argument = arguments[count];
        const size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
        const CLI::Option* option = argument.starts_with('-')
                                        ? app.get_option_no_throw(argument.substr(0, equals))
                                        : nullptr;
        if (option == nullptr || option == app.get_help_ptr()) {
            break;
        }
        const bool hasValueNext =
            option->get_items_expected_max() > 0 && equals == std::string::npos;
        count += hasValueNext ? 2 : 1;
    }
    return std::min(count, arguments.size());
}

void CommandLine::finish() {
    const bool isMissing =
        (input_ != nullptr && input_->empty()) || (inputs_ != nullptr && inputs_->empty());
    if (!isMissing) {
        return;
    }
    if (isTerminal(stdin)) {
        throw Failure{Trouble::usage, "IN is required: the name of a file, or - for stdin"};
    }
    if (input_ != nullptr) {
        *input_ = "-";
    } else {
        inputs_->push_back("-");
    }
}

} // namespace kel::tool
