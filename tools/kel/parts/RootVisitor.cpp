#include "parts/RootVisitor.h"

#include "parts/BinaryParts.h"
#include "json/JsonParts.h"

namespace kel::tool {

void visitRoots(Content&& content, const std::string& name, RootVisitor& visitor, Losses& losses) {
    if (content.format == Format::json) {
        visitJson(content.bytes, name, std::nullopt, visitor, losses);
        return;
    }
    if (content.format == Format::binary && visitPlainRecords(content.bytes, visitor)) {
        return;
    }
    const Input input = readInput(std::move(content), name, std::nullopt, losses);
    const std::vector<Value>& roots = input.document.roots();
    visitor.begin(roots.size() > 1, false);
    for (size_t i = 0; i < roots.size(); ++i) {
        visitor.visit({roots[i].get(), i});
    }
}

} // namespace kel::tool
