#include "explain/Refusal.h"

#include "explain/BinaryExplainer.h"
#include "explain/ForeignFile.h"
#include "explain/JsonExplainer.h"
#include "explain/SourceExcerpt.h"
#include "explain/TextExplainer.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace kel::tool {

namespace {

Failure failureWith(std::string message, Mistake mistake) {
    return {Trouble::malformed, std::move(message),
            std::make_shared<const Mistake>(std::move(mistake))};
}

Failure failureOfForeign(const Refusal& refusal, const ForeignFile& foreign) {
    const bool isBinary = refusal.format == Format::binary;
    const char* expected = isBinary ? "binary" : refusal.format == Format::json ? "JSON" : "text";
    const std::string reason = std::string("expected ") + expected + ", found " + foreign.name;
    const uint64_t first = isBinary ? 0 : 1;
    return failureWith(refusal.inputName + (isBinary ? ": offset 0: " : ":1:1: ") + reason +
                           (foreign.hint.empty() ? "" : "; " + foreign.hint),
                       {0, first, first, {}, reason, foreign.hint});
}

Failure failureInBinary(const Refusal& refusal) {
    BinaryFault fault = explainBinary(refusal.content, refusal.stop, refusal.message);
    if (refusal.content.empty()) {
        fault.path.clear();
    }
    return failureWith(refusal.inputName + ": offset " + std::to_string(fault.offset) + ": " +
                           (fault.path.empty() ? "" : fault.path + ": ") + fault.reason,
                       {fault.offset, 0, 0, fault.path, fault.reason, {}});
}

Failure failureInSource(const Refusal& refusal) {
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
    return failureAt(content, refusal.inputName, *fault);
}

} // namespace

Failure failureAt(std::string_view content, const std::string& inputName, const Fault& fault) {
    const auto [line, column] = sourcePlaceOf(content, fault.at);
    const std::string number = std::to_string(line);
    return failureWith(inputName + ':' + number + ':' + std::to_string(column) + ": " +
                           fault.reason + excerptOf(content, fault, number),
                       {fault.at, line, column, {}, fault.reason, fault.hint});
}

Failure failureOf(const Refusal& refusal) {
    if (const auto foreign = recogniseForeignFile(refusal.content, refusal.format)) {
        return failureOfForeign(refusal, *foreign);
    }
    return refusal.format == Format::binary ? failureInBinary(refusal) : failureInSource(refusal);
}

} // namespace kel::tool
