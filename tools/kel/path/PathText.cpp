#include "path/PathText.h"

#include "words/SafeText.h"
#include "words/Utf8.h"

#include <algorithm>

namespace kel::tool {

namespace {

constexpr size_t shownEnd = 76;
constexpr std::string_view gap = " ... ";

} // namespace

bool isBareInPath(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '@';
}

std::string withoutControls(std::string_view text) {
    std::string out;
    putWithoutControls(text, {}, [&out](std::string_view piece) { out += piece; });
    return out;
}

void PathText::addIndex(uint64_t index) {
    text_ += '[' + std::to_string(index) + ']';
}

void PathText::addName(std::string_view name) {
    if (!name.empty() && std::all_of(name.begin(), name.end(), isBareInPath)) {
        if (!text_.empty()) {
            text_ += '.';
        }
        text_ += name;
    } else {
        std::string quoted;
        for (const char c : name) {
            quoted.append(c == '"' || c == '\\' ? 1 : 0, '\\').append(1, c);
        }
        text_ += "[\"" + withoutControls(quoted) + "\"]";
    }
}

void PathText::addIdentity(std::string_view guid) {
    text_ += '#';
    text_ += guid;
}

std::string PathText::take() const {
    return text_.empty() ? std::string(ofRoot) : shortened(text_);
}

std::string PathText::shortened(std::string path) {
    if (path.size() <= longest) {
        return path;
    }
    size_t headEnd = shownEnd;
    while (isContinuation(path[headEnd])) {
        --headEnd;
    }
    size_t tailBegin = path.size() - shownEnd;
    while (isContinuation(path[tailBegin])) {
        ++tailBegin;
    }
    return path.substr(0, headEnd).append(gap).append(path, tailBegin);
}

std::string withRoot(const std::string& path, size_t root, size_t rootCount) {
    return rootCount > 1 ? std::to_string(root + 1) + ':' + path : path;
}

} // namespace kel::tool
