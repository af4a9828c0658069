#include "edit/EditCommand.h"

#include "command/CommandLine.h"
#include "document/Saving.h"
#include "document/TextExtras.h"
#include "findings/Unkept.h"
#include "system/OutputFile.h"
#include "system/System.h"

namespace kel::tool {

void EditCommand::describe(CommandLine& line) {
    line.file("FILE", input_, "File to read, or - for stdin");
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
    const Content read = content;
    Losses losses;
    Input input = readInput(std::move(content), input_, std::nullopt, losses);
    const bool isText = read.format == Format::text;
    std::string warning; // made early: nothing may fail after the output is there
    if (isText && isInPlace_) {
        refuseExtra(read.bytes, console);
    } else if (isText) {
        warning = lossInOutput(read.bytes);
    }
    refuseUnkept(read, input.document, input_, isForced_, console);
    Editor editor(input.document, input.format == Format::binary);
    change(editor, target, console);
    save(input, input_, size, losses, {target, output, isForced_, maxOutput_, true}, console);
    if (!warning.empty()) {
        console.warn(warning);
    }
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

/// Refuses to lose what only the text has, or warns of it.
void EditCommand::refuseExtra(std::string_view text, Console& console) const {
    const std::optional<TextExtra> extra = firstTextExtra(text);
    if (!extra) {
        return;
    }
    const std::string place = input_ + ':' + std::to_string(extra->line) + ": " + extra->words;
    if (!isForced_) {
        throw Failure{Trouble::refused,
                      place + " would be lost, because only values are written\nnothing was "
                              "written; use --force to write the values alone"};
    }
    console.warn(place + " is lost, because only values are written");
}

/// Returns the warning of what the file has and the output on stdout does not, or nothing.
std::string EditCommand::lossInOutput(std::string_view text) const {
    const Annotations annotations = annotationsIn(text);
    return annotations.line == 0 ? std::string() : input_ + ": " + lossOf(annotations, true);
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
