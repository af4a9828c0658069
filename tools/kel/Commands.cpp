#include "Commands.h"

#include "DescriptorCheck.h"
#include "DocumentScan.h"
#include "Failure.h"
#include "FailureReport.h"
#include "Input.h"
#include "KelWriter.h"
#include "PartwiseConversion.h"
#include "Representable.h"
#include "system/OutputFile.h"
#include "system/System.h"
#include "json/JsonWriter.h"

#include <algorithm>
#include <cerrno>

namespace kel::tool {

namespace {

/// Lets the action write to the named file, or to stdout for "-".
template <class Action>
void write(const std::string& name, Console& console, const Action& action) {
    console.begin(Work::writing, name);
    if (name == "-") {
        console.hush();
    }
    OutputFile output(name);
    try {
        action(output.file());
    } catch (Failure& failure) {
        const bool isUnwritten = failure.trouble == Trouble::unwritten;
        failure.message = name + (isUnwritten ? ": cannot be written: " : ": ") + failure.message;
        throw;
    }
    output.commit();
}

/// Writes the document to the named file, or to stdout for "-".
void write(const Document& document, Format format, const std::string& name, Console& console) {
    write(name, console, [&](std::FILE* file) {
        if (format == Format::json) {
            writeJson(document, file);
        } else {
            writeKel(document, format, file);
        }
    });
}

/// Returns the list of places that are lost on the way from the input.
std::string listOf(const Losses& losses, const std::string& inputName, const Input& input,
                   const char* target) {
    const std::string heading = inputName + ": " + std::to_string(losses.count()) +
                                (losses.count() == 1 ? " place" : " places") +
                                " cannot be converted from " + nameOf(input.format) + " to " +
                                target + ':';
    return describe(losses, heading, input.document.roots().size());
}

/// Examines the document for its form in the target format.
/// \param losses gets every place that the target cannot carry; null if the losses are known
DocumentScan scan(Input& input, Format target, const std::string& inputName, Losses* losses) {
    DocumentScan found;
    try {
        found = scanDocument(input.document, target, losses);
    } catch (Failure& failure) {
        failure.message = inputName + ": " + failure.message;
        throw;
    }
    if (!found.cycle) {
        input.document.knowAcyclic();
    }
    return found;
}

/// Returns the greatest number of bytes that is written as text or JSON.
uint64_t outputLimit(const Options& options, const Content& content) {
    return options.maxOutput.value_or(usualOutputLimit(content.bytes.size()));
}

int convert(const Options& options, Console& console) {
    const std::string& name = options.inputs.front();
    const Format target = *options.to;
    Losses losses;
    console.begin(Work::reading, name);
    Content content = readContent(name, options.from);
    const uint64_t limit = outputLimit(options, content);
    if (const auto converted = convertInParts(content, target, limit, name, options.output)) {
        if (converted->file != nullptr) {
            console.begin(Work::writing, options.output);
            converted->file->commit();
        } else {
            write(options.output, console,
                  [&](std::FILE* file) { converted->bytes.writeTo(file); });
        }
        return 0;
    }
    Input input = readInput(std::move(content), name, target, losses);
    console.begin(Work::checking, name);
    // The reader of JSON has already listed everything, under the paths of the JSON text.
    Losses* rest = input.format == Format::json ? nullptr : &losses;
    const DocumentScan found = scan(input, target, name, rest);
    refuseHugeOutput(found, target, limit, name);
    if (losses.count() > 0) {
        const std::string list = listOf(losses, name, input, nameOf(target));
        if (!options.isForced) {
            const bool advisesText = found.hasTextOnly && target != Format::text;
            throw Failure{Trouble::refused, list + "\nnothing was written; " +
                                                (advisesText ? "text keeps every kind; " : "") +
                                                "use --force to convert the rest"};
        }
        console.say("warning: " + list);
        makeRepresentable(input.document, target, found.namesakes);
        if (input.document.roots().empty()) {
            throw Failure{Trouble::refused, name + ": nothing is left to write"};
        }
    }
    write(input.document, target, options.output, console);
    return 0;
}

int show(const Options& options, Console& console) {
    const std::string& name = options.inputs.front();
    Losses losses;
    console.begin(Work::reading, name);
    Content content = readContent(name, options.from);
    const uint64_t limit = outputLimit(options, content);
    Input input = readInput(std::move(content), name, std::nullopt, losses);
    if (losses.count() > 0) {
        console.say("warning: " + listOf(losses, name, input, "values"));
    }
    const DocumentScan found = scan(input, Format::text, name, nullptr);
    if (found.cycle) {
        throw Failure{Trouble::refused,
                      name + ": " + *found.cycle + ": Cannot write a value that contains itself."};
    }
    refuseHugeOutput(found, Format::text, limit, name);
    write(input.document, Format::text, "-", console);
    return 0;
}

/// Reports where the document departs from the descriptors in it. \return whether it never does
bool areDescriptorsKept(const Document& document, const std::string& inputName, Console& console) {
    bool areKept = true;
    console.begin(Work::checking, inputName);
    try {
        checkDescriptors(document, [&](const std::string& violation) {
            areKept = false;
            console.say(inputName + ": " + violation);
        });
    } catch (Failure& failure) {
        failure.message = inputName + ": " + failure.message;
        throw;
    }
    return areKept;
}

int check(const Options& options, Console& console) {
    int worst = 0;
    for (const std::string& name : options.inputs) {
        try {
            console.begin(Work::reading, name);
            Losses lostInReading;
            const Input input =
                readInput(readContent(name, options.from), name, std::nullopt, lostInReading);
            // Losses between JSON and values concern conversion, not the file itself.
            if (input.format == Format::binary && lostInReading.count() > 0) {
                console.say(describe(
                    lostInReading, name + ": names are repeated:", input.document.roots().size()));
                worst = std::max(worst, exitStatus(Trouble::refused));
            }
            if (input.mayHoldDescriptors && !areDescriptorsKept(input.document, name, console)) {
                worst = std::max(worst, exitStatus(Trouble::refused));
            }
        } catch (...) {
            const Trouble trouble = reportFailure(console);
            const bool isWrong = trouble == Trouble::malformed;
            worst = std::max(worst, exitStatus(isWrong ? Trouble::refused : trouble));
        }
    }
    return worst;
}

} // namespace

int run(const Options& options, Console& console) {
    if (options.maxMemory) {
        if (!limitMemory(*options.maxMemory)) {
            throw Failure{Trouble::usage,
                          "--max-memory: kel cannot limit its memory on this system"};
        }
        console.knowMemoryLimit();
    }
    switch (options.command) {
    case Command::convert:
        return convert(options, console);
    case Command::show:
        return show(options, console);
    case Command::check:
        break;
    }
    return check(options, console);
}

void print(const std::string& text) {
    OutputFile output("-");
    errno = 0;
    std::fwrite(text.data(), 1, text.size(), output.file());
    output.commit();
}

} // namespace kel::tool
