#include "findings/Unkept.h"

#include "failures/Failure.h"
#include "findings/FindingText.h"
#include "findings/JsonScan.h"
#include "findings/SourceLines.h"
#include "findings/TextScan.h"
#include "findings/ValueOffsets.h"
#include "losses/Losses.h"

#include <algorithm>

namespace kel::tool {

bool isKept(const InputBytes& text) {
    ValueOffsets nothing;
    Findings found;
    scanText(text, Document(), nothing, found);
    return std::none_of(found.begin(), found.end(),
                        [](const Finding& finding) { return finding.isOfValues; });
}

void refuseUnkept(const Content& content, const Document& document, const std::string& name,
                  bool isForced, Console& console) {
    ValueOffsets wanted;
    Findings found;
    switch (content.format) {
    case Format::text:
        scanText(content.bytes, document, wanted, found);
        break;
    case Format::json:
        scanJson(content.bytes, document, wanted, found);
        break;
    case Format::binary:
        break;
    }
    std::erase_if(found, [](const Finding& finding) { return !finding.isOfValues; });
    if (found.empty()) {
        return;
    }
    findLines(found, content.bytes);
    std::string list;
    for (size_t i = 0; i < std::min(found.size(), Losses::listed); ++i) {
        list += (i == 0 ? "" : "\n  ") + lineFor(found[i], name);
    }
    if (found.size() > Losses::listed) {
        list += "\n  and " + std::to_string(found.size() - Losses::listed) + " more";
    }
    if (!isForced) {
        throw Failure{Trouble::refused,
                      list + "\nnothing was written; use --force to write the rest"};
    }
    console.warn(list);
}

} // namespace kel::tool
