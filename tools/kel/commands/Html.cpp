#include "command/Command.h"
#include "command/CommandLine.h"
#include "document/Input.h"
#include "document/OutputBytes.h"
#include "document/Saving.h"
#include "html/PageWriter.h"
#include "losses/DocumentScan.h"
#include "words/Counted.h"

#include <filesystem>

namespace kel::tool {

namespace {

constexpr const char* htmlNotes =
    R"(Writes one page that a browser opens without a network: a tree that folds, with kinds and contents,
and a search for names, contents, identities and paths. The page shows the identities that the file
gives, links between the places of a shared value, values that contain themselves, and beside each
value of a checked struct what its descriptor allows. It marks what kel check reports.

The page holds every value once. Of a memory block it has the first 4096 bytes. Nothing from the
file can run as a script.

Keys:
  arrows, Home, End, Page Up, Page Down   move; Right and Left also unfold and fold
  Enter       unfold, fold, or go from a value inside itself to the one around it
  *           unfold everything below a value
  /           search; Enter and Shift+Enter lead to the next and the previous match
  Backspace   go back after a link

Examples:
  kel html settings.kel -o settings.html
  kel html backup.kelb -o backup.html
  kel html --from json - -o answer.html < answer.json
  kel html mixer.kel | ssh server "cat > /srv/pages/mixer.html")";

/// Returns the name of a file without its folders, which are nobody's business where the page is
/// read.
std::string withoutFolders(const std::string& name) {
    const char separators[] = {'/', static_cast<char>(std::filesystem::path::preferred_separator)};
    return name.substr(name.find_last_of(std::string(separators, 2)) + 1);
}

/// The bytes of a page as far as they are known.
class LimitedPage {
public:
    /// \param name the input in messages
    LimitedPage(uint64_t limit, const std::string& name) : limit_(limit), name_(name) {}

    /// \throws Failure refused beyond the limit
    void append(std::string_view text) {
        if (text.size() > limit_ - size_) {
            throw Failure{Trouble::refused, name_ + ": the page would exceed " +
                                                counted(limit_, "byte") +
                                                "; use --max-output to allow more"};
        }
        size_ += text.size();
        bytes_.append(std::string(text));
    }

    const OutputBytes& bytes() const { return bytes_; }

private:
    uint64_t limit_;
    const std::string& name_;
    uint64_t size_ = 0;
    OutputBytes bytes_;
};

class Html : public Command {
public:
    void describe(CommandLine& line) override {
        line.input(input_);
        line.file("-o,--output", output_, "OUT", "Write the page to this file instead of stdout");
        line.from(from_);
        line.size("--max-output", maxOutput_,
                  "Refuse to write a larger page (default: 256M or, if more, 64 times the input)");
    }

    int run(Console& console) override {
        console.begin(Work::reading, input_);
        Content content = readContent(input_, from_);
        const uint64_t limit = maxOutput_.value_or(usualOutputLimit(content.bytes.size()));
        const GivenIdentities given(content);
        Losses losses;
        const Input input = readInput(std::move(content), input_, std::nullopt, losses);
        warnOfLosses(losses, input_, input, console);
        console.begin(Work::checking, input_);
        const PageData data(input.document);
        LimitedPage page(limit, input_);
        TextBuffer buffer([&page](std::string_view text) { page.append(text); });
        writePage(data, given, {withoutFolders(input_), input.format}, buffer);
        buffer.flush();
        writeTo(output_.value_or("-"), console,
                [&page](std::FILE* file) { page.bytes().writeTo(file); });
        return 0;
    }

private:
    std::string input_;
    std::optional<std::string> output_;
    std::optional<Format> from_;
    std::optional<uint64_t> maxOutput_;
};

} // namespace

extern const CommandEntry htmlCommand{"html", "Make a page for browsers that shows a file",
                                      htmlNotes, makeCommand<Html>};

} // namespace kel::tool
