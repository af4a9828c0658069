#include "PartwiseConversion.h"

#include "Failure.h"
#include "NotInParts.h"
#include "json/JsonOfRecords.h"
#include "json/JsonReader.h"

namespace kel::tool {

namespace {

/// Returns an open output file if its bytes can be taken back after a loss that is found late.
std::unique_ptr<OutputFile> openEarly(const std::string& name) {
    return OutputFile::canTakeBack(name) ? std::make_unique<OutputFile>(name) : nullptr;
}

OutputBytes toBinary(const std::string& json, const std::string& inputName, OutputFile* file) {
    return recordsOfJson(json, inputName, file != nullptr ? file->file() : nullptr);
}

OutputBytes toJson(const std::string& records, OutputFile* file) {
    OutputBytes rest;
    const bool isComplete = convertToJson(records, [&](std::string_view text) {
        if (file != nullptr) {
            writeBytes(text, file->file());
        } else {
            rest.append(std::string(text));
        }
    });
    if (!isComplete) {
        throw NotInParts();
    }
    return rest;
}

} // namespace

std::optional<Converted> convertInParts(const Content& content, Format target, uint64_t limit,
                                        const std::string& inputName,
                                        const std::string& outputName) {
    const bool isToBinary = content.format == Format::json && target == Format::binary;
    if (!isToBinary && !(content.format == Format::binary && target == Format::json)) {
        return std::nullopt;
    }
    // The JSON of records without references is at most this many times as large.
    constexpr uint64_t mostGrowth = 8;
    if (!isToBinary && content.bytes.size() > limit / mostGrowth) {
        return std::nullopt;
    }
    std::unique_ptr<OutputFile> file = openEarly(outputName);
    try {
        OutputBytes rest = isToBinary ? toBinary(content.bytes, inputName, file.get())
                                      : toJson(content.bytes, file.get());
        return Converted{std::move(file), std::move(rest)};
    } catch (const NotInParts&) {
        return std::nullopt;
    } catch (Failure& failure) {
        if (failure.trouble == Trouble::unwritten) {
            failure.message = outputName + ": cannot be written: " + failure.message;
        }
        throw;
    }
}

} // namespace kel::tool
