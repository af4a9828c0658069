#include "parts/RootVisitor.h"

#include "parts/BinaryParts.h"
#include "parts/NotInParts.h"
#include "parts/TextParts.h"
#include "json/JsonParts.h"

namespace kel::tool {

void visitRoots(Content&& content, const std::string& name, RootVisitor& visitor, Losses& losses) {
    if (content.format == Format::json) {
        visitJson(content.bytes, name, std::nullopt, visitor, losses);
        return;
    }
    try {
        const bool isDone = content.format == Format::binary
                                ? visitPlainRecords(content.bytes, visitor)
                                : visitPlainText(content.bytes, visitor);
        if (isDone) {
            return;
        }
    } catch (const UnreadablePart&) {
        readInput(std::move(content), name, std::nullopt, losses); // has the reason
        throw changedMeanwhile(name);
    }
    const Input input = readInput(std::move(content), name, std::nullopt, losses);
    const std::vector<Value>& roots = input.document.roots();
    visitor.begin(roots.size() > 1, false);
    for (size_t i = 0; i < roots.size(); ++i) {
        visitor.visit({roots[i].get(), i});
    }
}

} // namespace kel::tool
