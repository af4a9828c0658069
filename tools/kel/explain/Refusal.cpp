#include "explain/Refusal.h"

#include "explain/BinaryExplainer.h"
#include "explain/ForeignFile.h"
#include "explain/JsonExplainer.h"
#include "explain/SourceExcerpt.h"
#include "explain/TextExplainer.h"

#include <algorithm>
#include <optional>

namespace kel::tool {

namespace {

std::string describeForeign(const Refusal& refusal, const ForeignFile& foreign) {
    const bool isBinary = refusal.format == Format::binary;
    const char* expected = isBinary ? "binary" : refusal.format == Format::json ? "JSON" : "text";
    return refusal.inputName + (isBinary ? ": offset 0: " : ":1:1: ") + "expected " + expected +
           ", found " + foreign.name + (foreign.hint.empty() ? "" : "; " + foreign.hint);
}

std::string describeBinary(const Refusal& refusal) {
    const BinaryFault fault = explainBinary(refusal.content, refusal.stop, refusal.message);
    return refusal.inputName + ": offset " + std::to_string(fault.offset) + ": " +
           (refusal.content.empty() ? "" : fault.path + ": ") + fault.reason;
}

std::string describeSource(const Refusal& refusal) {
    const std::string_view content = refusal.content;
    const size_t size = content.size();
    std::optional<Fault> fault;
    if (refusal.format == Format::json) {
        const bool isOverflow = refusal.message.find("overflow") != std::string::npos;
        fault = explainJson(content, refusal.begin, refusal.stop, isOverflow);
    } else if (refusal.named == Format::json) {
        fault = explainJson(content, 0, size, false);
    }
    if (!fault && refusal.format == Format::text) {
        fault = explainText(content, refusal.stop);
    }
    if (!fault) {
        const size_t end = endOfInk(content.substr(0, refusal.stop));
        fault = Fault{end == 0 ? 0 : end - 1, 1, refusal.message, ""};
    }
    return describeFault(content, refusal.inputName, *fault);
}

} // namespace

Failure failureOf(const Refusal& refusal) {
    if (const auto foreign = recogniseForeignFile(refusal.content, refusal.format)) {
        return {Trouble::malformed, describeForeign(refusal, *foreign)};
    }
    return {Trouble::malformed,
            refusal.format == Format::binary ? describeBinary(refusal) : describeSource(refusal)};
}

} // namespace kel::tool
