#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/Saving.h"
#include "document/TextExtras.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "parts/PartwiseConversion.h"
#include "system/OutputFile.h"

namespace kel::tool {

namespace {

constexpr const char* convertNotes = R"(JSON:
  Objects become structs and arrays stay arrays. Integers of 32 bits become Ints, and other
  numbers Doubles. A null member becomes a variable without a value. {"$guid": "..."} is a guid,
  and {"$memblock": "..."} a memory block in base64. If two names are equal, the last one wins.
  A single root value is written indented. Several root values are written one per line. --compact
  and --indent choose the same layout for any number of root values. Levels beyond 40 are always
  on one line.

Identities:
  Every value in binary has an identity. Those in binary, and those that text gives, are kept. All
  other values get random ones, so binary differs each time. With --identities stable they depend
  on the contents and the place of the value alone, and one input always becomes the same bytes.
  Values at the same place of two such files then have the same identity if their contents are
  equal, and programs take the two for one value. A manager holds only one of them. If both are
  written to one binary file, the second becomes a reference to the first, even if one of them was
  changed meanwhile. Use random identities for documents that a program holds together.

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
  Values hold no comments and definitions of a text. IN keeps them, so a warning counts them, with
  the line of the first one. If OUT is IN itself, they are a loss like the others.
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
  kel convert --identities stable settings.json settings.kelb
  kel convert --compact settings.kel settings.json

The output appears whole or not at all. An existing file is replaced and keeps its permissions.)";

class Convert : public Command {
public:
    void describe(CommandLine& line) override {
        line.file("IN", input_, "File to read");
        line.file("OUT", output_, "File to write");
        line.from(from_);
        line.format("--to", to_, "Write this format, whatever the name of OUT");
        line.flag("--force", isForced_, "Convert what the format can hold and warn about the rest");
        line.layout(layout_);
        line.choice(
            "--identities", [this](const std::string& word) { isStable_ = word == "stable"; },
            {"random", "stable"},
            "Identities in binary of values that have none in IN (default: random)");
        line.maxOutput(maxOutput_);
    }

    int run(Console& console) override {
        const Format target = requireTarget();
        console.begin(Work::reading, input_);
        Content content = mapContent(input_, from_);
        const size_t size = content.bytes.size();
        const uint64_t limit = maxOutput_.value_or(usualOutputLimit(size));
        std::optional<StableIdentities> stable;
        if (isStable_) {
            stable.emplace(content);
        }
        const OutputForm form{target, layout_.value_or(JsonLayout()), stable ? &*stable : nullptr};
        if (const auto converted = convertInParts(content, form, limit, input_, output_)) {
            content.bytes = {}; // OUT can be the same file
            keep(*converted, console);
            return 0;
        }
        const Annotations annotations =
            content.format == Format::text ? annotationsIn(content.bytes) : Annotations();
        Losses losses;
        Input input = readInput(std::move(content), input_, target, losses);
        const bool isAnnotated = annotations.line != 0;
        std::string warning; // made early: nothing may fail after the output is there
        if (isAnnotated) {
            refuseToReplace(annotations);
            warning = input_ + ": " + lossOf(annotations, true);
        }
        save(input, input_, size, losses,
             {.format = form.format,
              .output = output_,
              .isForced = isForced_,
              .maxOutput = maxOutput_,
              .layout = form.layout,
              .identities = form.identities},
             console);
        if (isAnnotated) {
            console.warn(warning);
        }
        return 0;
    }

private:
    /// Returns the output format: the requested one, or that of the file name.
    Format requireTarget() const {
        const std::optional<Format> target = to_ ? to_ : formatOfName(output_);
        if (!target) {
            throw Failure{Trouble::usage, output_ + ": the name does not show the format; use "
                                                    "--to text, --to binary or --to json"};
        }
        refuseForOthers(layout_.has_value(), "--compact and --indent are", Format::json, *target);
        refuseForOthers(isStable_, "--identities stable is", Format::binary, *target);
        return *target;
    }

    /// Refuses options that are for another format.
    /// \param subject of the message, with its verb
    static void refuseForOthers(bool isGiven, const char* subject, Format wanted, Format target) {
        if (isGiven && target != wanted) {
            throw Failure{Trouble::usage, std::string(subject) + " for " + nameOf(wanted) +
                                              " only, and the output is " + nameOf(target)};
        }
    }

    /// Refuses to replace the only file that has comments and definitions.
    void refuseToReplace(const Annotations& annotations) const {
        if (!isForced_ && OutputFile::replaces(output_, input_)) {
            throw Failure{Trouble::refused,
                          input_ + ": " + lossOf(annotations, false) +
                              "\nnothing was written; use --force to convert the rest"};
        }
    }

    void keep(const Converted& converted, Console& console) const {
        if (converted.file != nullptr) {
            console.begin(Work::writing, output_);
            converted.file->commit();
        } else {
            writeTo(output_, console, [&](std::FILE* file) { converted.bytes.writeTo(file); });
        }
    }

    std::string input_;
    std::string output_;
    std::optional<Format> from_;
    std::optional<Format> to_;
    bool isForced_ = false;
    bool isStable_ = false;
    std::optional<JsonLayout> layout_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry convertCommand{"convert", "Convert a file into another format",
                                         convertNotes, makeCommand<Convert>};

} // namespace kel::tool
