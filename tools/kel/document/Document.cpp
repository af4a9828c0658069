#include "document/Document.h"

#include "document/TreeCursor.h"
#include "losses/Children.h"

#include <unordered_map>

namespace kel::tool {

Document::~Document() {
    if (!mayContainCycles_) {
        return;
    }
    try {
        cutCycles();
    } catch (...) {
        // Without memory for the search, the values remain allocated until the process ends.
    }
}

void Document::cutCycles() {
    if (!mayContainCycles_) {
        return;
    }
    std::unordered_map<const KEL*, bool> isOpen; // the containers visited so far
    const Replacement cut = [&isOpen](KEL* child, Value&) {
        const auto met = isOpen.find(child);
        return met != isOpen.end() && met->second;
    };
    for (const Value& root : roots_) {
        TreeCursor cursor(root.get());
        for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
            if (event == TreeCursor::Event::enter) {
                if (isOpen.emplace(cursor.value(), true).second) {
                    replaceChildren(*cursor.value(), cut);
                } else {
                    cursor.skip();
                }
            } else if (event == TreeCursor::Event::leave) {
                isOpen[cursor.value()] = false;
            }
        }
    }
    mayContainCycles_ = false;
}

} // namespace kel::tool
