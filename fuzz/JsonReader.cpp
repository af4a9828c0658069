// The tool's JSON reader. JSON is read or refused with a line number, as a whole and part by part
// alike. What it lost nothing of survives binary and JSON.
#include "json/JsonReader.h"

#include "Property.h"
#include "document/KelReader.h"
#include "document/KelWriter.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "parts/NotInParts.h"
#include "system/System.h"
#include "json/Base64.h"
#include "json/JsonOfRecords.h"
#include "json/JsonWriter.h"

#include <optional>
#include <string>

using namespace kel::fuzz;
using namespace kel::tool;

namespace {

/// A JSON text that was read, or the message of the refusal.
struct Reading {
    std::optional<Document> document;
    Losses losses;
    std::string failure;
};

Reading read(const std::string& json, std::optional<Format> target) {
    Reading reading;
    try {
        reading.document.emplace(readJson(json, "input", target, reading.losses));
    } catch (const Failure& failure) {
        require(failure.trouble == Trouble::malformed, "JSON is malformed or it is read");
        require(failure.message.starts_with("input:"), "a refusal has a place", failure.message);
        reading.failure = failure.message;
    }
    return reading;
}

/// Returns the JSON of a document, or nothing if it is not read back as the same values.
std::optional<std::string> jsonOf(const Document& document) {
    std::string json;
    TextBuffer buffer([&json](std::string_view text) { json += text; });
    JsonWriter writer(buffer, JsonLayout(), document.roots().size());
    for (const Value& root : document.roots()) {
        writer.write(root.get());
    }
    buffer.flush();
    return writer.isExact() ? std::optional(json) : std::nullopt;
}

bool areEqual(const Document& a, const Document& b) {
    bool areSame = a.roots().size() == b.roots().size();
    for (std::size_t i = 0; areSame && i < a.roots().size(); ++i) {
        const KEL* x = a.roots()[i].get();
        const KEL* y = b.roots()[i].get();
        areSame = x == nullptr || y == nullptr ? x == y : x->equalsValue(y);
    }
    return areSame;
}

/// Returns the records that were made of so many bytes of JSON.
std::string recordsOf(const OutputBytes& output, std::size_t jsonSize) {
    constexpr std::size_t largestRecord = 64; // for one character
    MemoryToWrite memory(largestRecord * (jsonSize + 1));
    output.writeTo(memory.file());
    return memory.take().value();
}

/// Converts to binary part by part, and compares with the document as a whole.
void throughRecords(const std::string& json, const Reading& whole) {
    std::optional<OutputBytes> output;
    try {
        output = recordsOfJson(json, "input", nullptr);
    } catch (const NotInParts&) { // something is lost
    } catch (const Failure& failure) {
        requireSame(failure.message, whole.failure, "both ways refuse with the same message");
        return;
    }
    require(!output || whole.failure.empty(), "both ways refuse");
    if (!whole.document) {
        return; // the loss was found before the mistake
    }
    require(output.has_value() == (whole.losses.count() == 0), "both ways find the losses");
    if (!output) {
        return;
    }
    const std::string records = recordsOf(*output, json.size());
    const Document back = readKel(records, Format::binary, "records");
    require(areEqual(back, *whole.document), "both ways make the same values");
    std::string again;
    if (convertToJson(records, JsonLayout(), [&again](std::string_view text) { again += text; })) {
        requireSame(again, jsonOf(back).value_or(""), "both ways make the same JSON");
    }
}

void throughJson(const Reading& reading) {
    const std::optional<std::string> json = jsonOf(*reading.document);
    if (!json) {
        return;
    }
    const Reading back = read(*json + "\n", std::nullopt);
    require(back.document && back.losses.count() == 0, "the tool reads what it wrote", *json);
    require(areEqual(*back.document, *reading.document), "exact JSON keeps the values", *json);
    requireSame(jsonOf(*back.document).value_or(""), *json, "the JSON stays the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto decoded = fromBase64(bytes);
    require(!decoded || toBase64(*decoded) == bytes, "base64 has one spelling");
    const std::string json = bytes + "\n";
    throughRecords(json, read(json, Format::binary));
    const Reading plain = read(json, std::nullopt);
    if (plain.document) {
        throughJson(plain);
    }
    return 0;
}
