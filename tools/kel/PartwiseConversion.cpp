#include "PartwiseConversion.h"

#include "Failure.h"
#include "json/JsonOfRecords.h"
#include "json/JsonReader.h"

#include <new>
#include <stdexcept>
#include <system_error>

namespace kel::tool {

namespace {

/// Returns an open output file if its bytes can be taken back after a loss that is found late.
std::unique_ptr<OutputFile> openEarly(const std::string& name) {
    return OutputFile::canTakeBack(name) ? std::make_unique<OutputFile>(name) : nullptr;
}

std::optional<Converted> toBinary(const std::string& json, const std::string& inputName,
                                  const std::string& outputName) {
    std::unique_ptr<OutputFile> file = openEarly(outputName);
    std::optional<OutputBytes> rest =
        recordsOfJson(json, inputName, file != nullptr ? file->file() : nullptr);
    if (!rest) {
        return std::nullopt;
    }
    return Converted{std::move(file), std::move(*rest)};
}

std::optional<Converted> toJson(const std::string& records, const std::string& outputName) {
    Converted json{openEarly(outputName), {}};
    const bool isComplete = convertToJson(records, [&](std::string_view text) {
        if (json.file != nullptr) {
            writeBytes(text, json.file->file());
        } else {
            json.bytes.append(std::string(text));
        }
    });
    return isComplete ? std::optional(std::move(json)) : std::nullopt;
}

} // namespace

std::optional<Converted> convertInParts(const Content& content, Format target,
                                        const std::string& inputName,
                                        const std::string& outputName) {
    // The conversion as a whole reports the reason of every other failure.
    try {
        if (content.format == Format::json && target == Format::binary) {
            return toBinary(content.bytes, inputName, outputName);
        }
        if (content.format == Format::binary && target == Format::json) {
            return toJson(content.bytes, outputName);
        }
    } catch (const Failure& failure) {
        if (failure.trouble == Trouble::malformed) {
            throw;
        }
    } catch (KELException* failure) {
        DeleteKELException(failure);
    } catch (const JException&) {
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    } catch (const std::system_error&) {
    }
    return std::nullopt;
}

} // namespace kel::tool
