#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/Saving.h"
#include "document/ShownValues.h"
#include "edit/ValueArgument.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "path/Place.h"
#include "system/System.h"

namespace kel::tool {

namespace {

constexpr const char* getNotes =
    R"(Prints the value of each PATH in text form. Null is printed as NULL, and a double alone with
as many digits as it needs. If text cannot hold a value, it is printed as "kel show" prints it, and
a warning lists each place whose print is not exact: doubles that need more than six decimals, and
memory blocks. --to text refuses such values, and strings with double quotes, with that list.

  --raw      prints a string without quotes and other scalars bare, each on a line of its own. Null
             is printed as null. A memory block is printed as its bytes, if there is only one
             PATH. Containers are refused.
  --to       prints text that can be read back, JSON, or the binary record of one value
  --default  is the value to print for a PATH that leads nowhere: in text form, as JSON with --to
             json, and as it is with --raw

A variable that is missing in a checked struct can have a default in its descriptor. Then that is
printed, and a message on stderr says so. Any other PATH that leads nowhere ends with status 1, and
nothing is printed. "kel --help" describes paths.

Examples:
  kel get settings.kel window.size
  kel get --raw settings.json user.name
  kel get --raw --default 80 server.kelb port
  kel get --to json presets.kel 'presets[3]'
  kel get --raw settings.kel window.width window.height)";

class Get : public Command {
public:
    void describe(CommandLine& line) override {
        line.file("FILE", input_, "File to read, or - for stdin");
        line.arguments("PATH", pathTexts_, "Places of the values, such as window.size[0]");
        line.flag("--raw", isRaw_, "Print scalars without quotes, for scripts");
        line.text("--default", default_, "TEXT", "Print this value if PATH leads nowhere");
        line.from(from_);
        line.format("--to", to_, "Print this format, and refuse what it cannot hold");
        line.flag("--force", isForced_, "With --to, print what the format can hold");
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        refuseContradictions();
        for (const std::string& text : pathTexts_) {
            paths_.push_back(Path::of(text));
        }
        console.begin(Work::reading, input_);
        Content content = readContent(input_, from_);
        const size_t size = content.bytes.size();
        Losses losses;
        const Input input = readInput(std::move(content), input_, std::nullopt, losses);
        warnOfLosses(losses, input_, input, console);
        console.begin(Work::checking, input_);
        if (isRaw_) {
            printRaw(input.document, console);
        } else {
            printValues(input, size, console);
        }
        return 0;
    }

private:
    void refuseContradictions() const {
        if (isRaw_ && to_) {
            throw Failure{Trouble::usage, "--raw cannot be combined with --to"};
        }
        if (isForced_ && !to_) {
            throw Failure{Trouble::usage, "--force needs --to"};
        }
        if (to_ == Format::binary && pathTexts_.size() > 1) {
            throw Failure{Trouble::usage, "--to binary takes one PATH"};
        }
        if (to_ == Format::binary && isTerminal(stdout)) {
            throw Failure{Trouble::usage, "binary is not written to a terminal; send it to a file"};
        }
    }

    void printValues(const Input& input, size_t inputSize, Console& console) const {
        const ValueForm form = to_ == Format::json ? ValueForm::json : ValueForm::text;
        std::vector<Value> values;
        for (const Path& path : paths_) {
            std::optional<Value> value = lookUp(input.document, path, console);
            values.push_back(value ? *std::move(value)
                                   : valueOfArgument(*default_, form, to_.value_or(Format::text),
                                                     "--default", "--raw prints"));
        }
        // The values can contain themselves where those of the input can.
        Input found{input.format, Document(std::move(values), input.format == Format::binary)};
        const std::string name = paths_.size() == 1 ? nameOf(paths_[0]) : input_;
        if (to_) {
            save(found, name, inputSize, {}, {*to_, "-", isForced_, maxOutput_, true}, console);
        } else {
            showValues(found.document, name, maxOutput_.value_or(usualOutputLimit(inputSize)),
                       console);
        }
    }

    void printRaw(const Document& document, Console& console) const {
        std::string lines;
        for (const Path& path : paths_) {
            const std::optional<Value> value = lookUp(document, path, console);
            if (value && paths_.size() == 1 && isMemBlock(value->get())) {
                printBytes(**value, nameOf(path), console);
                return;
            }
            lines += (value ? rawTextAt(path, value->get()) : *default_) + '\n';
        }
        printText(lines, console);
    }

    std::string rawTextAt(const Path& path, const KEL* value) const {
        std::optional<std::string> text = rawTextOf(value);
        if (!text) {
            throw Failure{Trouble::refused, nameOf(path) + ": is " + kindOf(*value).words +
                                                ", which has no raw form; use --to json or "
                                                "--to text"};
        }
        return *std::move(text);
    }

    /// Returns the value at a path, or nothing if it is missing and has a default of the user's.
    /// Reports that a value is the default of a descriptor.
    std::optional<Value> lookUp(const Document& document, const Path& path,
                                Console& console) const {
        try {
            const Place place = findValueOrDefault(document, path);
            if (place.isDefault) {
                console.say("note: " + nameOf(path) +
                            ": missing; this is the default of its descriptor");
            }
            return share(place.value);
        } catch (const NotFound& missing) {
            if (!default_) {
                throw Failure{missing.trouble, input_ + ": " + missing.message};
            }
            return std::nullopt;
        } catch (const Failure& failure) {
            throw Failure{failure.trouble, input_ + ": " + failure.message};
        }
    }

    std::string nameOf(const Path& path) const { return input_ + ": " + path.text(); }

    std::string input_;
    std::vector<std::string> pathTexts_;
    std::vector<Path> paths_;
    bool isRaw_ = false;
    bool isForced_ = false;
    std::optional<std::string> default_;
    std::optional<Format> from_;
    std::optional<Format> to_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry getCommand{"get", "Print values of a file by their paths", getNotes,
                                     makeCommand<Get>};

} // namespace kel::tool
