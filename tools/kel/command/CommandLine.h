/// \file
/// CommandLine: the arguments and options of a command.
#pragma once

#include "document/Format.h"
#include "system/Console.h"
#include "json/JsonLayout.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kel::tool {

/// The options that every command has.
struct CommonOptions {
    std::optional<uint64_t> maxMemory; ///< in bytes
    ColourChoice colours = ColourChoice::automatic;
    bool isQuiet = false;
};

/// Collects what a command takes from the command line. Every description becomes a line of the
/// command's help. The values are stored while the command line is read.
class CommandLine {
public:
    /// \param app the parser's part for the command, which must outlive this object
    explicit CommandLine(CLI::App& app) : app_(app) {}

    /// Returns an argument in the form in which the parser must get it. The parser splits texts in
    /// brackets at commas, so such a text gets a blank before it, which is removed again.
    static std::string forParser(const std::string& argument);

    /// Takes an argument that must be there.
    void argument(const char* name, std::string& value, const char* description);

    /// Takes the name of a file, which must be there and cannot be empty.
    void file(const char* name, std::string& value, const char* description);

    /// Takes an option with the name of a file, which cannot be empty.
    /// \param type the name of the value in help, such as "FILE"
    void file(const char* name, std::optional<std::string>& value, const char* type,
              const char* description);

    /// Takes an argument that can be left out.
    void optionalArgument(const char* name, std::optional<std::string>& value,
                          const char* description);

    /// Takes one or more arguments, after all others.
    void arguments(const char* name, std::vector<std::string>& values, const char* description);

    /// Takes the name of a file to read, after all others. It can be left out where stdin is not a
    /// terminal; then stdin is read.
    void input(std::string& name);

    /// Takes the names of files to read, after all others. They can be left out where stdin is not
    /// a terminal; then stdin is read.
    void inputs(std::vector<std::string>& names);

    /// Takes an option without a value. \param name such as "-i,--in-place"
    void flag(const char* name, bool& value, const char* description);

    /// Takes an option with a text. \param type the name of the value in help, such as "TEXT"
    void text(const char* name, std::optional<std::string>& value, const char* type,
              const char* description);

    /// Takes an option whose value is one of a few words. \param choose gets the word
    void choice(const char* name, const std::function<void(const std::string&)>& choose,
                const std::vector<std::string>& words, const char* description);

    /// Takes an option with the name of a format.
    void format(const char* name, std::optional<Format>& value, const char* description);

    /// Takes an option with a number of bytes.
    void size(const char* name, std::optional<uint64_t>& value, const char* description);

    /// Takes --from, the format of all inputs.
    void from(std::optional<Format>& value);

    /// Takes --max-output, the limit for text and JSON.
    void maxOutput(std::optional<uint64_t>& value);

    /// Takes --compact and --indent, the layout of JSON. They exclude each other.
    void layout(std::optional<JsonLayout>& value);

    /// Completes the values after all were stored.
    /// \throws Failure usage if a file to read is missing
    void finish();

private:
    CLI::App& app_;
    std::string* input_ = nullptr;
    std::vector<std::string>* inputs_ = nullptr;
};

/// Describes the options that every command has.
void describeCommon(CommandLine& line, CommonOptions& options);

/// Returns how many of the arguments, from the first one on, are options that every command has and
/// their values.
size_t countCommonOptions(std::span<const std::string> arguments);

} // namespace kel::tool
