#include "find/Finder.h"

#include "find/KindWord.h"
#include "words/ValueText.h"

#include <limits>

namespace kel::tool {

namespace {

using Event = TreeCursor::Event;

/// Returns the text of a scalar that is compared with a pattern.
std::string textOf(const KEL& scalar) {
    return scalar.getType() == KELKind_MemBlock ? std::string() : wordsFor(&scalar);
}

} // namespace

void Finder::begin(bool hasSeveralRoots, bool isTree) {
    hasSeveralRoots_ = hasSeveralRoots;
    isTree_ = isTree;
}

void Finder::visit(const RootPart& part) {
    TreeCursor cursor(part.value);
    cursor.countFrom(part.firstElement);
    for (Event event = cursor.next(); event != Event::done; event = cursor.next()) {
        if (event == Event::leave) {
            if (!isTree_) {
                met_[cursor.value()] = {false, count_ - countBefore_.back()};
                countBefore_.pop_back();
            }
            continue;
        }
        if (cursor.depth() == 0 && !part.isFirst) {
            continue; // an earlier part has shown the array itself
        }
        const bool isNew =
            isTree_ || cursor.value() == nullptr || met_.find(cursor.value()) == met_.end();
        arrive(cursor, isNew, part.root);
        if (event == Event::enter && !isTree_ && !enters(cursor.value())) {
            cursor.skip();
        } else if (event == Event::scalar && !isTree_) {
            met_.try_emplace(cursor.value());
        }
    }
}

/// Reports the value at the cursor if it matches. \param isNew whether this is its first place
void Finder::arrive(const TreeCursor& cursor, bool isNew, size_t root) {
    if (!isMatch(cursor, isNew || sought_.everyPlace)) {
        return;
    }
    add(1);
    if (report_) {
        report_(cursor, withRoot(cursor.wholePath(), root, hasSeveralRoots_ ? 2 : 1));
    }
}

/// Returns whether the contents of a container are visited at this place.
bool Finder::enters(KEL* container) {
    const auto [place, isNew] = met_.try_emplace(container);
    Met& met = place->second;
    if (!isNew && !report_ && sought_.everyPlace && !met.isOpen) {
        add(met.matches); // they need not be visited to be counted
    }
    const bool isEntered =
        isNew || (sought_.everyPlace && !met.isOpen && met.matches > 0 && report_);
    if (isEntered) {
        met.isOpen = true;
        countBefore_.push_back(count_);
    }
    return isEntered;
}

/// Returns whether the value matches at this place. \param isNew whether it can match by itself
bool Finder::isMatch(const TreeCursor& cursor, bool isNew) {
    const KEL* value = cursor.value();
    if (sought_.kind && *sought_.kind != (value != nullptr ? value->getType() : kindOfNull)) {
        return false;
    }
    if (!sought_.pattern) {
        return isNew;
    }
    Pattern& pattern = *sought_.pattern;
    if (sought_.inNames && cursor.name() != nullptr && pattern.matches(cursor.name())) {
        return true;
    }
    if (!sought_.inValues || !isNew || (value != nullptr && kindOf(*value).isContainer)) {
        return false;
    }
    if (value != nullptr && value->getType() == KELKind_String) {
        return pattern.matches(value->toString());
    }
    return value == nullptr ? pattern.matches(wordsFor(value)) : pattern.matches(textOf(*value));
}

void Finder::add(uint64_t matches) {
    constexpr uint64_t most = std::numeric_limits<uint64_t>::max();
    count_ = matches > most - count_ ? most : count_ + matches;
}

} // namespace kel::tool
