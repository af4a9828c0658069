#include "parts/PartwiseConversion.h"

#include "failures/Failure.h"
#include "parts/NotInParts.h"
#include "json/JsonOfRecords.h"
#include "json/JsonReader.h"

namespace kel::tool {

namespace {

/// Returns an open output file if its bytes can be taken back after a loss that is found late.
std::unique_ptr<OutputFile> openEarly(const std::string& name) {
    return OutputFile::canTakeBack(name) ? std::make_unique<OutputFile>(name) : nullptr;
}

/// Returns how many times as large as records without references their JSON is at most. One byte of
/// a name or a text becomes up to six. The 34 bytes of a container become up to two lines, and the
/// 26 of a variable without a value one line.
constexpr uint64_t mostGrowth(const JsonLayout& layout) {
    constexpr uint64_t ofText = 6;
    const uint64_t line = layout.width * JsonLayout::levels + 1;
    return ofText + (line + 16) / 17;
}

OutputBytes toBinary(const InputBytes& json, const std::string& inputName, OutputFile* file,
                     const StableIdentities* identities) {
    if (identities == nullptr) {
        return recordsOfJson(json, inputName, file != nullptr ? file->file() : nullptr);
    }
    // The identity of a container precedes the contents that it depends on.
    std::string records = recordsOfJson(json, inputName, nullptr).joined();
    identities->replaceIn(records);
    OutputBytes output;
    output.append(std::move(records));
    return output;
}

OutputBytes toJson(const InputBytes& records, OutputFile* file, const JsonLayout& layout) {
    OutputBytes rest;
    const bool isComplete = convertToJson(records, layout, [&](std::string_view text) {
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

std::optional<Converted> convertInParts(const Content& content, const OutputForm& form,
                                        uint64_t limit, const std::string& inputName,
                                        const std::string& outputName) {
    const bool isToBinary = content.format == Format::json && form.format == Format::binary;
    if (!isToBinary && !(content.format == Format::binary && form.format == Format::json)) {
        return std::nullopt;
    }
    if (!isToBinary && content.bytes.size() > limit / mostGrowth(form.layout)) {
        return std::nullopt;
    }
    // An output that is made in memory is opened when it is complete.
    std::unique_ptr<OutputFile> file = form.identities == nullptr ? openEarly(outputName) : nullptr;
    try {
        OutputBytes rest = isToBinary
                               ? toBinary(content.bytes, inputName, file.get(), form.identities)
                               : toJson(content.bytes, file.get(), form.layout);
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
