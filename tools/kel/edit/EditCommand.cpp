#include "edit/EditCommand.h"

#include "command/CommandLine.h"
#include "document/Saving.h"
#include "document/TextExtras.h"
#include "findings/Unkept.h"
#include "system/OutputFile.h"
#include "system/System.h"

namespace kel::tool {

void EditCommand::describe(CommandLine& line) {
    line.argument("FILE", input_, "File to read, or - for stdin");
    describeArguments(line);
    line.flag("-i,--in-place", isInPlace_, "Write FILE itself instead of stdout");
    describeOptions(line);
    line.from(from_);
    line.format("--to", to_, "Write this format instead of that of FILE");
    line.flag("--force", isForced_, "Change FILE even if something else in it is lost");
    line.maxOutput(maxOutput_);
}

int EditCommand::run(Console& console) {
    refuseContradictions();
    prepare();
    console.begin(Work::reading, input_);
    Content content = readContent(input_, from_);
    const size_t size = content.bytes.size();
    const Format target = to_.value_or(content.format);
    const std::string output = isInPlace_ ? input_ : "-";
    if (!isInPlace_ && target == Format::binary && isTerminal(stdout)) {
        throw Failure{Trouble::usage, "binary is not written to a terminal; use -i or --to, or "
                                      "send it to a file"};
    }
    const std::optional<TextExtra> extra = extraIn(content);
    const Content read = content;
    Losses losses;
    Input input = readInput(std::move(content), input_, std::nullopt, losses);
    if (extra) {
        report(*extra, console);
    }
    refuseUnkept(read, input.document, input_, isForced_, console);
    Editor editor(input.document, input.format == Format::binary);
    change(editor, target, console);
    save(input, input_, size, losses, {target, output, isForced_, maxOutput_, true}, console);
    return 0;
}

void EditCommand::refuseContradictions() const {
    if (!isInPlace_) {
        return;
    }
    if (to_) {
        throw Failure{Trouble::usage, "--to cannot be combined with -i, which keeps the format"};
    }
    if (!OutputFile::canTakeBack(input_)) {
        throw Failure{Trouble::usage, input_ + ": -i needs a regular file"};
    }
}

std::optional<TextExtra> EditCommand::extraIn(const Content& content) const {
    return isInPlace_ && content.format == Format::text ? firstTextExtra(content.bytes)
                                                        : std::nullopt;
}

void EditCommand::report(const TextExtra& extra, Console& console) const {
    const std::string place = input_ + ':' + std::to_string(extra.line) + ": " + extra.words;
    if (!isForced_) {
        throw Failure{Trouble::refused,
                      place + " would be lost, because only values are written\nnothing was "
                              "written; use --force to write the values alone"};
    }
    console.warn(place + " is lost, because only values are written");
}

void EditCommand::change(Editor& editor, Format target, Console& console) {
    console.begin(Work::checking, input_);
    try {
        edit(editor, target);
    } catch (Failure& failure) {
        if (failure.trouble == Trouble::refused) {
            failure.message = input_ + ": " + failure.message;
        }
        throw;
    }
    for (const std::string& remark : editor.remarks()) {
        console.warn(input_ + ": " + remark);
    }
}

} // namespace kel::tool
