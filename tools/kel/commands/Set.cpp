#include "command/CommandLine.h"
#include "edit/EditCommand.h"
#include "edit/ValueArgument.h"
#include "failures/Failure.h"

namespace kel::tool {

namespace {

constexpr const char* setNotes =
    R"(VALUE is a value in text form: 640, 2.5, true, '"dark"', '[ 1 2 ]', '{ a = 1 }', NULL. With
--string it is the string itself, and with --json it is JSON. "kel --help" describes paths.

If the last step of PATH is missing, it is created: a variable, or the element of an array whose
number is the number of elements. A pair of an index list is set by an array of its key and its
item, and the element of a manager by its whole identity: presets#IDENTITY, or #IDENTITY if the root
value is the manager. An existing value is replaced, even by one of another kind. A checked struct
refuses a value that its descriptor does not allow.

The whole file is written, to stdout in the format of FILE or with -i to FILE itself. There it
appears whole or not at all, and FILE keeps its permissions. Text and JSON are written as "kel
convert" writes them, so the layout can change.

If something else in the file would be lost, nothing is written, unless --force is given. This
concerns what the format cannot hold (see "kel convert --help"), nulls in arrays and repeated names,
and with -i the comments, definitions, references and given identities of a text. Without -i, a
warning counts the comments and definitions. If the value is inside one that several places share,
all of them change, and a warning lists the others.

Examples:
  kel set -i settings.kel window.width 800
  kel set -i --string settings.kelb user.name "Ada"
  kel set -i settings.json 'tags[0]' '"new"'
  kel set -i --json settings.kel window '{"width": 800, "height": 600}'
  kel set settings.kelb theme '"dark"' --to json | less)";

class Set : public EditCommand {
protected:
    void describeArguments(CommandLine& line) override {
        line.argument("PATH", pathText_, "Place of the value, such as window.size[0]");
        line.argument("VALUE", valueText_, "Value in text form");
    }

    void describeOptions(CommandLine& line) override {
        line.flag("--string", isString_, "VALUE is the string itself");
        line.flag("--json", isJson_, "VALUE is JSON");
    }

    void prepare() override {
        if (isString_ && isJson_) {
            throw Failure{Trouble::usage, "--string cannot be combined with --json"};
        }
        path_ = Path::of(pathText_);
    }

    void edit(Editor& editor, Format target) override {
        const ValueForm form = isString_ ? ValueForm::string
                               : isJson_ ? ValueForm::json
                                         : ValueForm::text;
        editor.set(path_, valueOfArgument(valueText_, form, target, "VALUE", "--string takes"));
    }

private:
    std::string pathText_;
    std::string valueText_;
    bool isString_ = false;
    bool isJson_ = false;
    Path path_;
};

} // namespace

extern const CommandEntry setCommand{"set", "Put a value in a place of a file", setNotes,
                                     makeCommand<Set>};

} // namespace kel::tool
