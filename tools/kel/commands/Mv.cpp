#include "command/CommandLine.h"
#include "edit/EditCommand.h"

namespace kel::tool {

namespace {

constexpr const char* mvNotes =
    R"(Renames a variable, which keeps its value. NAME is the new name itself, not a path, so it
needs no quotes other than those of the shell. If NAME exists already, it is replaced with --force
only. A checked struct refuses a name under which its descriptor does not allow the value. "kel
--help" describes paths.

The whole file is written, to stdout in the format of FILE or with -i to FILE itself. "kel set
--help" describes when that is refused and what else --force does.

Examples:
  kel mv -i settings.kel window.colour color
  kel mv -i settings.json '["old name"]' "new name"
  kel mv --force settings.kelb draft final > changed.kelb)";

class Mv : public EditCommand {
protected:
    void describeArguments(CommandLine& line) override {
        line.argument("PATH", pathText_, "Place of the variable, such as window.width");
        line.argument("NAME", name_, "New name of the variable");
    }

    void prepare() override { path_ = Path::of(pathText_); }

    void edit(Editor& editor, Format) override { editor.rename(path_, name_, isForced()); }

private:
    std::string pathText_;
    std::string name_;
    Path path_;
};

} // namespace

extern const CommandEntry mvCommand{"mv", "Rename a variable in a file", mvNotes, makeCommand<Mv>};

} // namespace kel::tool
