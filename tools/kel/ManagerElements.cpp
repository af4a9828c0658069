#include "ManagerElements.h"

#include "Failure.h"
#include "GuidText.h"
#include "KelWriter.h"
#include "System.h"

#include <unordered_set>

namespace kel::tool {

namespace {

constexpr size_t largestTextForm = size_t{64} << 20U;

/// The manager's text form.
std::string textFormOf(KEL_Manager& manager) {
    // The file is bounded because the indentation of a deep tree can be far longer than the tree.
    MemoryToWrite file(largestTextForm);
    bool isWritten = true;
    try {
        ValueWriter writer(Format::text, file.file());
        writer.write(&manager);
        writer.close();
    } catch (const Failure&) {
        isWritten = false;
    }
    const std::optional<std::string> text = file.take();
    if (!text || !isWritten) {
        throw Failure{Trouble::refused, "a manager is too large to list its values"};
    }
    return *text;
}

} // namespace

std::vector<KEL*> elementsOf(KEL_Manager& manager) {
    constexpr std::string_view behindIdentity = " = ";
    const auto count = static_cast<size_t>(manager.size());
    std::vector<KEL*> elements;
    if (count == 0) {
        return elements;
    }
    const std::string text = textFormOf(manager);
    const std::string_view view = text;
    std::unordered_set<std::string_view> seen;
    for (size_t at = view.find(behindIdentity); at != std::string_view::npos && seen.size() < count;
         at = view.find(behindIdentity, at + 1)) {
        if (at < JHashCode::guidTextLength) {
            continue;
        }
        const size_t begin = at - JHashCode::guidTextLength;
        const std::string_view spelling = view.substr(begin, JHashCode::guidTextLength);
        const std::optional<JHashCode> identity = guidOfText(spelling);
        // Strings inside the elements may look like an entry; the manager knows better.
        if (identity && manager.containsKel(*identity) && seen.insert(spelling).second) {
            elements.push_back(manager.getKel(*identity));
        }
    }
    if (elements.size() != count) {
        throw Failure{Trouble::refused, "the values of a manager cannot be listed"};
    }
    return elements;
}

} // namespace kel::tool
