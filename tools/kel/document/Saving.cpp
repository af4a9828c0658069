#include "document/Saving.h"

#include "document/KelWriter.h"
#include "document/OutputBytes.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "losses/Representable.h"
#include "system/OutputFile.h"
#include "json/JsonWriter.h"

#include <cerrno>

namespace kel::tool {

namespace {

/// Writes the document in its form.
void write(const Document& document, const Saving& saving, std::FILE* file) {
    if (saving.format == Format::json) {
        writeJson(document, saving.layout, file);
    } else if (saving.identities != nullptr) {
        std::string records = recordsOf(document);
        saving.identities->replaceIn(records);
        writeBytes(records, file);
    } else {
        writeKel(document, saving.format, file);
    }
}

/// Examines the document for its form in the target format.
/// \param losses gets every place that the target cannot carry; null if the losses are known
DocumentScan scan(Document& document, Format target, const std::string& inputName, Losses* losses,
                  const JsonLayout& layout = {}) {
    DocumentScan found;
    try {
        found = scanDocument(document, target, losses, layout);
    } catch (Failure& failure) {
        failure.message = inputName + ": " + failure.message;
        throw;
    }
    if (!found.cycle) {
        document.knowAcyclic();
    }
    return found;
}

} // namespace

void writeTo(const std::string& name, Console& console,
             const std::function<void(std::FILE*)>& action) {
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

void print(const std::string& text) {
    OutputFile output("-");
    errno = 0;
    std::fwrite(text.data(), 1, text.size(), output.file());
    output.commit();
}

std::string listOf(const Losses& losses, const std::string& inputName, size_t rootCount,
                   Format from, Format to) {
    const std::string what = from == to
                                 ? std::string("cannot be written as ")
                                 : std::string("cannot be converted from ") + nameOf(from) + " to ";
    return describePlaces(losses, inputName, what + nameOf(to), rootCount);
}

void warnOfLosses(const Losses& losses, const std::string& inputName, Format format,
                  bool hasSeveralRoots, Console& console) {
    if (losses.count() > 0) {
        console.warn(
            describePlaces(losses, inputName,
                           std::string("cannot be converted from ") + nameOf(format) + " to values",
                           hasSeveralRoots ? 2 : 1));
    }
}

void warnOfLosses(const Losses& losses, const std::string& inputName, const Input& input,
                  Console& console) {
    warnOfLosses(losses, inputName, input.format, input.document.roots().size() > 1, console);
}

void save(Input& input, const std::string& inputName, size_t inputSize, Losses losses,
          const Saving& saving, Console& console) {
    const Format target = saving.format;
    console.begin(Work::checking, inputName);
    // The reader of JSON has already listed everything, under the paths of the JSON text.
    const bool isListed = input.format == Format::json && !saving.isEdited;
    Losses* rest = isListed ? nullptr : &losses;
    const DocumentScan found = scan(input.document, target, inputName, rest, saving.layout);
    refuseHugeOutput(found, target, saving.maxOutput.value_or(usualOutputLimit(inputSize)),
                     inputName);
    if (losses.count() > 0) {
        const std::string list =
            listOf(losses, inputName, input.document.roots().size(), input.format, target);
        if (!saving.isForced) {
            const bool advisesText = found.hasTextOnly && target != Format::text;
            throw Failure{Trouble::refused,
                          list + "\nnothing was written; " +
                              (advisesText ? "text keeps every kind; " : "") +
                              (input.format != target ? "use --force to convert the rest"
                                                      : "use --force to write the rest")};
        }
        console.warn(list);
        makeRepresentable(input.document, target, found.namesakes);
        if (input.document.roots().empty()) {
            throw Failure{Trouble::refused, inputName + ": nothing is left to write"};
        }
    }
    writeTo(saving.output, console, [&](std::FILE* file) { write(input.document, saving, file); });
}

void refuseUnshowable(Document& document, const std::string& inputName, uint64_t limit) {
    const DocumentScan found = scan(document, Format::text, inputName, nullptr);
    if (found.cycle) {
        throw Failure{Trouble::refused, inputName + ": " + *found.cycle +
                                            ": Cannot write a value that contains itself.\n"
                                            "use kel dump or kel html, which show it"};
    }
    refuseHugeOutput(found, Format::text, limit, inputName);
}

} // namespace kel::tool
