#include "findings/SourceLines.h"

#include "words/Utf8.h"

#include <algorithm>

namespace kel::tool {

namespace {

/// An offset whose line is wanted, and where the line and the column are stored.
struct Mark {
    size_t offset;
    uint64_t* line;
    uint64_t* column;
};

void visitMarks(std::vector<Mark>& marks, std::string_view content) {
    std::stable_sort(marks.begin(), marks.end(),
                     [](const Mark& a, const Mark& b) { return a.offset < b.offset; });
    uint64_t line = 1;
    uint64_t column = 1;
    size_t at = 0;
    for (const Mark& mark : marks) {
        while (at < mark.offset && at < content.size()) {
            if (content[at] == '\n') {
                ++line;
                column = 1;
                ++at;
            } else {
                ++column;
                at += std::max<size_t>(utf8SequenceLength(content.substr(at, 4)), 1);
            }
        }
        *mark.line = line;
        *mark.column = column;
    }
}

} // namespace

void findLines(Findings& findings, std::string_view content) {
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    std::vector<uint64_t> earlierLines(findings.size());
    uint64_t unused = 0;
    std::vector<Mark> marks;
    for (size_t i = 0; i < findings.size(); ++i) {
        if (findings[i].offset) {
            marks.push_back({*findings[i].offset, &findings[i].line, &findings[i].column});
        }
        if (findings[i].earlier) {
            marks.push_back({*findings[i].earlier, &earlierLines[i], &unused});
        }
    }
    visitMarks(marks, content);
    for (size_t i = 0; i < findings.size(); ++i) {
        if (findings[i].earlier) {
            findings[i].message += " (first at line " + std::to_string(earlierLines[i]) + ')';
        }
    }
}

} // namespace kel::tool
