#include "findings/FindingExcerpts.h"

#include "explain/SourceExcerpt.h"

#include <algorithm>
#include <string_view>

namespace kel::tool {

namespace {

constexpr size_t mostExcerpts = 100; // of a file

/// Returns the length of the word, number, string or bracket at the offset.
size_t lengthAt(const Content& content, size_t at) {
    constexpr size_t longestMarked = 1024; // more than an excerpt shows
    const std::string_view text = content.bytes.view().substr(at, longestMarked);
    size_t end = 1;
    if (text.starts_with('"')) {
        while (end < text.size() && text[end] != '"') {
            end += content.format == Format::json && text[end] == '\\' ? 2 : 1;
        }
        ++end;
    } else if (!text.starts_with('[') && !text.starts_with('{')) {
        end = text.find_first_of(" \t\r\n\f=,:()[]{}<>\"", 1);
    }
    return std::clamp<size_t>(end, 1, text.size());
}

} // namespace

void addExcerpts(Findings& findings, const Content& content) {
    size_t count = 0;
    for (Finding& finding : findings) {
        if (finding.line != 0 && count++ < mostExcerpts) {
            const Fault fault{*finding.offset, lengthAt(content, *finding.offset), {}, {}};
            finding.excerpt = excerptOf(content.bytes, fault, std::to_string(finding.line));
        }
    }
}

} // namespace kel::tool
