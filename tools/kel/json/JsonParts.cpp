#include "json/JsonParts.h"

#include "parts/PartLimits.h"
#include "parts/RecordCursor.h"

namespace kel::tool {

void JsonParts::hasAdded(size_t size) {
    waiting_ += recordHeaderSize + size;
    if (stack().empty()) {
        visit(roots().back().get(), true);
        roots().clear();
        visited_ = 0;
        return;
    }
    KEL_Array* array = stack().front().array;
    if (stack().size() == 1 && array != nullptr && waiting_ > partSize) {
        visit(array, false);
        visited_ += static_cast<uint64_t>(array->getCount());
        array->removeAllVars();
    }
}

void JsonParts::visit(KEL* value, bool isLast) {
    const size_t root = isLast ? rootCount() - 1 : rootCount();
    visitor_.visit({value, root, visited_, visited_ == 0, isLast});
    waiting_ = 0;
}

void JsonParts::hasReplaced() {
    list(listsRepeated_ ? "a repeated name; only its last value is kept" : nullptr);
}

bool hasSeveralTexts(const InputBytes& bytes) {
    const std::string_view json = bytes;
    Trail trail(bytes);
    constexpr std::string_view blanks = " \t\n\r";
    uint64_t depth = 0;
    bool isDone = false; // whether the first text has ended
    bool isWord = false; // whether a number or word at the root has begun
    for (size_t at = 0; at < json.size(); ++at) {
        trail.reach(json.data() + at);
        const char c = json[at];
        const bool isBlank = blanks.find(c) != std::string_view::npos;
        if (isDone && isBlank) {
            continue;
        }
        if (isDone) {
            return true;
        }
        if (c == '"') {
            while (++at < json.size() && json[at] != '"') {
                at += json[at] == '\\' ? 1 : 0;
            }
            isDone = depth == 0;
        } else if (c == '{' || c == '[') {
            if (isWord) {
                return true;
            }
            ++depth;
        } else if (c == '}' || c == ']') {
            depth -= depth > 0 ? 1 : 0;
            isDone = depth == 0;
        } else if (depth == 0) {
            isDone = isWord && isBlank;
            isWord = !isBlank;
        }
    }
    return false;
}

} // namespace kel::tool
