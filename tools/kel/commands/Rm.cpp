#include "command/CommandLine.h"
#include "edit/EditCommand.h"

namespace kel::tool {

namespace {

constexpr const char* rmNotes =
    R"(Removes variables, elements of arrays, pairs of index lists, elements of managers, and root
values by their number. All paths are looked up before the first value is removed, so that "a[0]"
and "a[1]" mean the first two elements of the file. "kel --help" describes paths.

The whole file is written, to stdout in the format of FILE or with -i to FILE itself. "kel set
--help" describes when that is refused and what --force does.

Examples:
  kel rm -i settings.kel window.position
  kel rm -i settings.json 'tags[0]' 'tags[1]'
  kel rm presets.kel 'colours[3]'
  kel rm -i log.kelb 1:. 2:.)";

class Rm : public EditCommand {
protected:
    void describeArguments(CommandLine& line) override {
        line.arguments("PATH", pathTexts_, "Places of the values, such as window.size[0]");
    }

    void prepare() override {
        for (const std::string& text : pathTexts_) {
            paths_.push_back(Path::of(text));
        }
    }

    void edit(Editor& editor, Format) override { editor.remove(paths_); }

private:
    std::vector<std::string> pathTexts_;
    std::vector<Path> paths_;
};

} // namespace

extern const CommandEntry rmCommand{"rm", "Remove values from a file", rmNotes, makeCommand<Rm>};

} // namespace kel::tool
